#include "workbench/shell/summary_plot.h"

#include <qwt/qwt_graphic.h>
#include <qwt/qwt_legend.h>
#include <qwt/qwt_legend_data.h>
#include <qwt/qwt_plot_canvas.h>
#include <qwt/qwt_plot_grid.h>
#include <qwt/qwt_plot_item.h>
#include <qwt/qwt_scale_div.h>
#include <qwt/qwt_scale_draw.h>
#include <qwt/qwt_scale_engine.h>
#include <qwt/qwt_scale_map.h>
#include <qwt/qwt_scale_widget.h>
#include <qwt/qwt_text.h>

#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/base/number_text.h"
#include "workbench/records/summary.h"

namespace shell {

namespace {

const QColor kIncome(0x3f, 0x7f, 0xbf);
const QColor kCost(0x66, 0xb0, 0x8c);
const QColor kOverrun(0xd6, 0x4b, 0x4b);
const QColor kGain(0x1d, 0x7a, 0x4c);
const QColor kCurrentBand(0xdb, 0xe9, 0xf8);
const QColor kHoverBand(0xff, 0xf3, 0xcd);
const QColor kEven(0x6b, 0x77, 0x85);
constexpr double kTenThousand = 10000;  // yuan in a 万元, the unit of the axis
constexpr int kLabelWidth = 9;          // of the font's ideographs

QString money(double value) {
  return QString::fromStdString(base::ToThousandthsString(value, 2));
}

QString signedMoney(double value) {
  return (value > 0 ? QStringLiteral("+") : QString()) + money(value);
}

/// +1 for income above cost, -1 for cost above income, 0 for what is but rounding.
int signOf(const SummaryPlot::Bar& bar) {
  if (records::differByRounding(bar.income, bar.cost)) return 0;
  return bar.income > bar.cost ? 1 : -1;
}

class Names : public QwtScaleDraw {
 public:
  explicit Names(const std::vector<SummaryPlot::Bar>& bars) : bars_(bars) {
    enableComponent(Backbone, false);
    enableComponent(Ticks, false);
    setSpacing(6);
  }
  void setFont(const QFont& font) {
    font_ = font;
    invalidateCache();
  }
  QwtText label(double value) const override {
    const auto row = static_cast<std::size_t>(std::lround(value));
    if (value < -0.4 || row >= bars_.size()) return {};
    const QFontMetrics metrics(font_);
    QwtText text(metrics.elidedText(bars_[row].name, Qt::ElideRight,
                                    metrics.horizontalAdvance(QStringLiteral("费")) * kLabelWidth),
                 QwtText::PlainText);
    text.setFont(font_);
    return text;
  }

 private:
  const std::vector<SummaryPlot::Bar>& bars_;
  QFont font_;
};

class TenThousands : public QwtScaleDraw {
 public:
  TenThousands() { enableComponent(Backbone, false); }
  QwtText label(double value) const override {
    return QwtText(QString::number(value / kTenThousand, 'g', 6), QwtText::PlainText);
  }
};

}  // namespace

class SummaryPlot::Pairs : public QwtPlotItem {
 public:
  explicit Pairs(const SummaryPlot& owner) : owner_(owner) {
    setItemAttribute(Legend, true);
    setZ(20);  // over the grid lines
    setLegendIconSize(QSize(12, 12));
  }

  QList<QwtLegendData> legendData() const override {
    QList<QwtLegendData> entries;
    const auto add = [&](const QString& name, const QColor& colour) {
      QwtLegendData entry;
      entry.setValue(QwtLegendData::TitleRole,
                     QVariant::fromValue(QwtText(name, QwtText::PlainText)));
      entry.setValue(QwtLegendData::IconRole,
                     QVariant::fromValue(defaultIcon(colour, legendIconSize())));
      entries << entry;
    };
    add(QStringLiteral("收入"), kIncome);
    add(QStringLiteral("成本"), kCost);
    add(QStringLiteral("成本（超出收入）"), kOverrun);
    return entries;
  }

  void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
            const QRectF& canvas) const override {
    const double zero = xMap.transform(0);
    painter->setFont(owner_.font());  // a printer's painter comes with one of its own
    const QFontMetrics metrics(owner_.font());
    for (int i = 0; i < static_cast<int>(owner_.bars_.size()); ++i) {
      const Bar& bar = owner_.bars_[static_cast<std::size_t>(i)];
      if (i == owner_.current_ || i == owner_.hovered_) {
        const double top = yMap.transform(i - 0.5);
        painter->fillRect(QRectF(canvas.left(), top, canvas.width(), yMap.transform(i + 0.5) - top),
                          i == owner_.hovered_ ? kHoverBand : kCurrentBand);
      }
      const auto draw = [&](double value, double from, double to, const QColor& colour) {
        const double top = yMap.transform(i + from);
        const double end = xMap.transform(value);
        painter->fillRect(
            QRectF(std::min(zero, end), top, std::abs(end - zero), yMap.transform(i + to) - top),
            colour);
      };
      draw(bar.income, -0.34, -0.02, kIncome);
      draw(bar.cost, 0.02, 0.34, signOf(bar) < 0 ? kOverrun : kCost);

      const QString text = signedMoney(bar.income - bar.cost);
      QRectF room(xMap.transform(std::max({bar.income, bar.cost, 0.0})) + 5, 0,
                  metrics.horizontalAdvance(text) + 2, metrics.height());
      room.moveCenter(QPointF(room.center().x(), yMap.transform(i)));
      if (i != owner_.current_ && i != owner_.hovered_) painter->fillRect(room, Qt::white);
      painter->setPen(signOf(bar) < 0 ? kOverrun : signOf(bar) > 0 ? kGain : kEven);
      painter->drawText(room, Qt::AlignCenter, text);
    }
  }

 private:
  const SummaryPlot& owner_;
};

SummaryPlot::SummaryPlot(QWidget* parent) : QwtPlot(parent), pairs_(new Pairs(*this)) {
  setObjectName(QStringLiteral("summaryPlot"));
  setAutoFillBackground(true);
  setCanvasBackground(Qt::white);
  auto* face = static_cast<QwtPlotCanvas*>(canvas());
  face->setFrameStyle(QFrame::NoFrame);
  face->setCursor(Qt::ArrowCursor);
  face->setMouseTracking(true);
  face->installEventFilter(this);

  auto* grid = new QwtPlotGrid;
  grid->enableY(false);
  grid->setMajorPen(QColor(0xe3, 0xe8, 0xed), 1);
  grid->attach(this);
  pairs_->attach(this);  // which owns its items

  setAxisScaleDraw(yLeft, new Names(bars_));
  setAxisScaleDraw(xBottom, new TenThousands);
  for (const int axis : {yLeft, xBottom}) axisWidget(axis)->setMargin(2);
  auto* legend = new QwtLegend;
  legend->setDefaultItemMode(QwtLegendData::ReadOnly);
  insertLegend(legend, TopLegend);
  setScales();
}

SummaryPlot::~SummaryPlot() {
  canvas()->removeEventFilter(this);
}

void SummaryPlot::setBars(std::vector<Bar> bars) {
  bars_ = std::move(bars);
  const int count = static_cast<int>(bars_.size());
  if (current_ >= count) current_ = -1;
  if (hovered_ >= count) hovered_ = -1;
  setScales();
}

void SummaryPlot::setScales() {
  const int count = std::max(1, static_cast<int>(bars_.size()));
  double least = 0;
  double most = 0;
  int digits = 0;
  for (const Bar& bar : bars_) {
    least = std::min({least, bar.income, bar.cost});
    most = std::max({most, bar.income, bar.cost});
    digits = std::max(digits, signedMoney(bar.income - bar.cost).size());
  }
  if (most - least < 1) most = least + 1;
  // Behind the longest bar there is room for its difference.
  const double longest = (digits + 1.0) * QFontMetrics(font()).horizontalAdvance(QLatin1Char('0'));
  const double room = std::clamp(longest / std::max(120, canvas()->width()), 0.1, 0.65);
  setAxisScale(xBottom, least, most + (most - least) * room / (1 - room));
  setAxisMaxMajor(xBottom, 5);
  setAxisMaxMinor(xBottom, 0);

  QList<double> ticks;
  for (int i = 0; i < count; ++i) ticks << i;
  setAxisScaleDiv(yLeft, QwtScaleDiv(count - 0.5, -0.5, {}, {}, ticks));
  QFont small = font();
  setAxisFont(yLeft, small);
  setAxisFont(xBottom, small);
  static_cast<Names*>(axisScaleDraw(yLeft))->setFont(small);
  QwtText unit(QStringLiteral("万元"), QwtText::PlainText);
  unit.setFont(small);
  setAxisTitle(xBottom, unit);
  if (auto* shown = qobject_cast<QwtLegend*>(legend())) shown->setFont(small);
  replot();
}

void SummaryPlot::setCurrent(int bar) {
  if (std::exchange(current_, bar) != bar) replot();
}

void SummaryPlot::setHovered(int bar) {
  if (std::exchange(hovered_, bar) != bar) replot();
}

int SummaryPlot::barAt(const QPoint& point) const {
  const int bar = static_cast<int>(std::floor(invTransform(yLeft, point.y()) + 0.5));
  return bar >= 0 && bar < static_cast<int>(bars_.size()) ? bar : -1;
}

QPoint SummaryPlot::centreOf(int bar) const {
  return {canvas()->width() / 2, static_cast<int>(std::lround(transform(yLeft, bar)))};
}

void SummaryPlot::tell(int bar, const QPoint& at) {
  if (bar < 0) {
    QToolTip::hideText();
    return;
  }
  const Bar& shown = bars_[static_cast<std::size_t>(bar)];
  QToolTip::showText(at,
                     QStringLiteral("%1\n收入 %2\n成本 %3\n差额 %4\n双击查看来源")
                         .arg(shown.name, money(shown.income), money(shown.cost),
                              signedMoney(shown.income - shown.cost)),
                     canvas());
}

bool SummaryPlot::eventFilter(QObject* watched, QEvent* event) {
  if (watched != canvas()) return QwtPlot::eventFilter(watched, event);
  const auto* mouse = dynamic_cast<const QMouseEvent*>(event);
  switch (event->type()) {
    case QEvent::MouseMove: {
      if (mouse == nullptr) break;
      const int bar = barAt(mouse->pos());
      if (bar != hovered_) {
        setHovered(bar);
        emit barHovered(bar);
        tell(bar, mouse->globalPos());
      }
      break;
    }
    case QEvent::Leave:
      setHovered(-1);
      emit barHovered(-1);
      break;
    case QEvent::MouseButtonPress:
      if (mouse != nullptr && mouse->button() == Qt::LeftButton)
        emit barClicked(barAt(mouse->pos()));
      break;
    case QEvent::MouseButtonDblClick:
      if (mouse != nullptr && mouse->button() == Qt::LeftButton)
        emit barDoubleClicked(barAt(mouse->pos()));
      break;
    case QEvent::Resize:
      QMetaObject::invokeMethod(
          this, [this] { setScales(); }, Qt::QueuedConnection);
      break;
    default:
      break;
  }
  return QwtPlot::eventFilter(watched, event);
}

void SummaryPlot::changeEvent(QEvent* event) {
  QwtPlot::changeEvent(event);
  if (event->type() == QEvent::FontChange) setScales();
}

}  // namespace shell
