#include "pooling/res_item_bill_dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRadioButton>
#include <QRegExpValidator>
#include <QVBoxLayout>

#include "host/app/services.h"
#include "host/base/number_text.h"

namespace gui::qce {
namespace {

// The anchors hold for the first and the last alternative only; the validator matches as a whole.
const char* const CoefficientPattern =
    R"(^(-[1-9]\d{0,1}(\.\d{0,3})?)|(1000|[1-9]\d{0,2}(\.\d{0,3})?)|0?(\.\d{0,3})$)";

}  // namespace

CoefficientDialog::CoefficientDialog(QWidget* parent)
    : Dialog(parent),
      multiply_(new QRadioButton("乘以相同系数", this)),
      divide_(new QRadioButton("除以相同系数", this)),
      edit_(new QLineEdit(this)) {
  setWindowTitle("批量设置系数");
  multiply_->setChecked(true);
  edit_->setObjectName("ResItemBill_coefficient");
  edit_->setAlignment(Qt::AlignRight);
  edit_->setValidator(new QRegExpValidator(QRegExp(CoefficientPattern), edit_));
  auto* label = new QLabel("设置系数：", this);
  label->setBuddy(edit_);

  auto* line = new QHBoxLayout;
  line->addWidget(label);
  line->addWidget(edit_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(multiply_);
  layout->addWidget(divide_);
  layout->addLayout(line);
  layout->addWidget(createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
  setMinimumWidth(320);
  edit_->setFocus();
}

void CoefficientDialog::start(double coefficient, bool multiplies) {
  (multiplies ? multiply_ : divide_)->setChecked(true);
  edit_->setText(QString::fromStdString(base::ToPlainStringWithStripTrailingZeros(coefficient, 3)));
  edit_->selectAll();
}

double CoefficientDialog::coefficient() const {
  return edit_->text().toDouble();
}

bool CoefficientDialog::multiplies() const {
  return multiply_->isChecked();
}

void CoefficientDialog::accept() {
  if (coefficient() != 0.0) {
    Dialog::accept();
    return;
  }
  app::GetChannel()->message("系数不能设置为零", QMessageBox::Ok);
  edit_->setFocus();
  edit_->selectAll();
}

TermDialog::TermDialog(const QString& title, const QString& label, const QString& text,
                       const QString& hint, QWidget* parent)
    : Dialog(parent), edit_(new QLineEdit(text, this)) {
  setWindowTitle(title);
  edit_->setObjectName("ResItemBill_term");
  edit_->setPlaceholderText(hint);
  edit_->selectAll();
  auto* caption = new QLabel(label, this);
  caption->setBuddy(edit_);

  auto* line = new QHBoxLayout;
  line->addWidget(caption);
  line->addWidget(edit_, 1);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(line);
  layout->addWidget(createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
  setMinimumWidth(420);
  edit_->setFocus();
}

QString TermDialog::text() const {
  return edit_->text().trimmed();
}

}  // namespace gui::qce
