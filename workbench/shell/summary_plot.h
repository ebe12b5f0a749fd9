#pragma once

#include <qwt/qwt_plot.h>

#include <QString>
#include <vector>

namespace shell {

/// Income and cost of some lines as pairs of bars, and beside each pair the difference. A cost
/// above its income has a colour of its own.
class SummaryPlot : public QwtPlot {
  Q_OBJECT

 public:
  struct Bar {
    QString name;
    double income = 0;  ///< yuan
    double cost = 0;    ///< yuan
  };

  explicit SummaryPlot(QWidget* parent = nullptr);
  ~SummaryPlot() override;

  void setBars(std::vector<Bar> bars);
  const std::vector<Bar>& bars() const { return bars_; }
  /// Marks a pair as the current one, or as the one that is pointed at; -1 for none.
  void setCurrent(int bar);
  void setHovered(int bar);
  int current() const { return current_; }
  int hovered() const { return hovered_; }
  /// The pair at a point of the canvas; -1 for none.
  int barAt(const QPoint& point) const;
  /// The middle of a pair, on the canvas.
  QPoint centreOf(int bar) const;

 signals:
  void barHovered(int bar);  ///< -1 when the mouse leaves
  void barClicked(int bar);
  void barDoubleClicked(int bar);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  class Pairs;

  void setScales();
  void tell(int bar, const QPoint& at);

  std::vector<Bar> bars_;
  Pairs* pairs_;
  int current_ = -1;
  int hovered_ = -1;
};

}  // namespace shell
