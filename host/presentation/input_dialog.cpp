#include "host/presentation/input_dialog.h"

#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>
#include <cmath>

#include "host/app/services.h"
#include "host/base/number_text.h"

namespace gui {
namespace {

QString plain(double value, int decimals) {
  return QString::fromStdString(base::ToPlainStringWithStripTrailingZeros(value, decimals));
}

// Numbers are typed with "." whatever the locale, as they are shown in the grids.
QDoubleValidator* createValidator(const CInputDialog::Bounds& bounds, QObject* parent) {
  auto* validator = new QDoubleValidator(bounds.minimum, bounds.maximum, bounds.decimals, parent);
  validator->setNotation(QDoubleValidator::StandardNotation);
  QLocale locale = QLocale::c();
  locale.setNumberOptions(QLocale::RejectGroupSeparator);
  validator->setLocale(locale);
  return validator;
}

}  // namespace

CInputDialog::CInputDialog(const QString& title, const QString& label, double value,
                           const Bounds& bounds, QWidget* parent)
    : Dialog(parent), bounds_(bounds) {
  setWindowTitle(title);
  edit_ = new QLineEdit(plain(value, bounds.decimals), this);
  edit_->setObjectName("CInputDialog_value");
  edit_->setAlignment(Qt::AlignRight);
  edit_->setValidator(createValidator(bounds, edit_));
  edit_->selectAll();

  auto* caption = new QLabel(label, this);
  caption->setBuddy(edit_);

  QDialogButtonBox* buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(caption);
  layout->addWidget(edit_);
  layout->addWidget(buttons);
  setMinimumWidth(320);
}

CInputDialog::~CInputDialog() = default;

double CInputDialog::getValue() const {
  return edit_->text().toDouble();
}

void CInputDialog::accept() {
  bool ok = false;
  const double value = edit_->text().toDouble(&ok);
  if (ok && std::isfinite(value) && value >= bounds_.minimum && value <= bounds_.maximum) {
    Dialog::accept();
    return;
  }
  const QString text = QString("“%1”不是 %2 至 %3 之间的数字，请重新输入！")
                           .arg(edit_->text(), plain(bounds_.minimum, bounds_.decimals),
                                plain(bounds_.maximum, bounds_.decimals));
  app::GetChannel()->message(text.toStdString(), QMessageBox::Ok);
  edit_->setFocus();
  edit_->selectAll();
}

}  // namespace gui
