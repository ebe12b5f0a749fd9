#include "workbench/shell/tax_settings.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "workbench/controllers/open_project.h"
#include "workbench/shell/session.h"

namespace shell {

namespace {

namespace tax_methods = records::tax_methods;

QString text(const costing::Decimal& rate) {
  return QString::fromStdString(rate.toString());
}

}  // namespace

TaxSettings::TaxSettings(Session& session, records::FeeTemplate feeTemplate)
    : session_(session),
      feeTemplate_(std::move(feeTemplate)),
      method_(new QComboBox),
      rate_(new QLineEdit) {
  const auto add = [this](const std::string& method, const costing::Decimal& rate) {
    const QString name = QString::fromStdString(method);
    method_->addItem(QStringLiteral("%1（%2 %）").arg(name, text(rate)), name);
  };
  add(tax_methods::General, feeTemplate_.generalRate);
  add(tax_methods::Simplified, feeTemplate_.simplifiedRate);
  const QString own = QString::fromStdString(tax_methods::Own);
  method_->addItem(own, own);
  method_->setObjectName(QStringLiteral("taxMethod"));
  method_->installEventFilter(this);
  rate_->setObjectName(QStringLiteral("taxRate"));
  rate_->setFixedWidth(100);
  rate_->setAlignment(Qt::AlignRight);
  rate_->setToolTip(QStringLiteral("0 到 100，最多 4 位小数；回车确认"));

  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(24, 20, 24, 0);
  layout->setSpacing(8);
  layout->addWidget(new QLabel(QStringLiteral("计税方法：")));
  layout->addWidget(method_);
  layout->addSpacing(16);
  layout->addWidget(new QLabel(QStringLiteral("税率：")));
  layout->addWidget(rate_);
  layout->addWidget(new QLabel(QStringLiteral("%　　修改后三种汇总随之重算，可撤销")));
  layout->addStretch();
  connect(method_, qOverload<int>(&QComboBox::activated), this, &TaxSettings::choose);
  connect(rate_, &QLineEdit::editingFinished, this, &TaxSettings::readRate);
  refresh();
}

// The line loses the focus while the widget goes, and would have its rate read then.
TaxSettings::~TaxSettings() {
  rate_->disconnect(this);
}

records::Taxation TaxSettings::taxation() const {
  const records::Project& project = session_.project().project();
  records::Taxation taxation = project.taxation();
  if (taxation.method.empty()) taxation.method = tax_methods::General;
  taxation.rate = feeTemplate_.taxRate(project.facts);
  return taxation;
}

void TaxSettings::refresh() {
  const records::Taxation now = taxation();
  method_->setCurrentIndex(method_->findData(QString::fromStdString(now.method)));
  rate_->setText(text(now.rate));
}

void TaxSettings::choose(int index) {
  records::Taxation next = taxation();
  next.method = method_->itemData(index).toString().toStdString();
  if (next.method == tax_methods::General) next.rate = feeTemplate_.generalRate;
  if (next.method == tax_methods::Simplified) next.rate = feeTemplate_.simplifiedRate;
  apply(next);
  if (next.method == tax_methods::Own) {
    rate_->setFocus();
    rate_->selectAll();
  }
}

void TaxSettings::readRate() {
  records::Taxation next = taxation();
  const QString typed = rate_->text().trimmed().remove(QLatin1Char('%'));
  if (typed == text(next.rate)) return;
  // Put back first: a message takes the focus, which would bring the same text here again.
  rate_->setText(text(next.rate));
  const auto rate = costing::Decimal::parse(typed.toStdString());
  if (!rate) {
    app::qce::GetQCEChannel()->message(
        QStringLiteral("税率“%1”不是数字；请输入 0 到 100 之间的数。").arg(typed).toStdString(),
        QMessageBox::Ok);
    return;
  }
  if (*rate == next.rate) return;
  next.method = tax_methods::Own;
  next.rate = *rate;
  apply(next);
}

void TaxSettings::apply(const records::Taxation& taxation) {
  try {
    const app::ScopedUndo undo("");
    session_.project().project().setTaxation(taxation);
  } catch (const records::Refusal& refusal) {
    app::qce::GetQCEChannel()->message(refusal.what(), QMessageBox::Ok);
  }
  refresh();
}

// A wheel that passes over the box must not change the project.
bool TaxSettings::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Wheel) return QWidget::eventFilter(watched, event);
  event->ignore();
  return true;
}

}  // namespace shell
