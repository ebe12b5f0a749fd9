#include "host/presentation/input_dialog.h"

#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QVBoxLayout>
#include <optional>

#include "host/app/services.h"
#include "host/base/number_text.h"
#include "host/bwidgets/cell_text.h"

namespace gui {
namespace {

QString plain(double value, int decimals) {
  return QString::fromStdString(base::ToPlainStringWithStripTrailingZeros(value, decimals));
}

// What the user means by `text`; nothing for what is no number. Any text can be typed: were letters
// left out one by one, "12*1.5" would silently become 121.5.
std::optional<QString> typedNumber(const QString& text) {
  static const QRegularExpression plainDigits(QStringLiteral("^[-+]?[0-9]*\\.?[0-9]*$"));
  std::optional<QString> number = bwidgets::plainNumber(text);
  if (number && !plainDigits.match(*number).hasMatch()) return {};
  return number;
}

int decimalsOf(const QString& number) {
  const int point = number.indexOf(QLatin1Char('.'));
  return point < 0 ? 0 : number.size() - point - 1;
}

}  // namespace

CInputDialog::CInputDialog(const QString& title, const QString& label, double value,
                           const Bounds& bounds, QWidget* parent)
    : Dialog(parent), bounds_(bounds) {
  setWindowTitle(title);
  edit_ = new QLineEdit(plain(value, bounds.decimals), this);
  edit_->setObjectName("CInputDialog_value");
  edit_->setAlignment(Qt::AlignRight);
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
  return typedNumber(edit_->text()).value_or(QString()).toDouble();
}

void CInputDialog::accept() {
  const std::optional<QString> number = typedNumber(edit_->text());
  const double value = number.value_or(QString()).toDouble();
  const bool within = number && value >= bounds_.minimum && value <= bounds_.maximum;
  if (within && decimalsOf(*number) <= bounds_.decimals) {
    Dialog::accept();
    return;
  }
  const QString text =
      within
          ? QString("“%1”的小数超过 %2 位，请重新输入！").arg(edit_->text()).arg(bounds_.decimals)
          : QString("“%1”不是 %2 至 %3 之间的数字，请重新输入！")
                .arg(edit_->text(), plain(bounds_.minimum, bounds_.decimals),
                     plain(bounds_.maximum, bounds_.decimals));
  app::GetChannel()->message(text.toStdString(), QMessageBox::Ok);
  edit_->setFocus();
  edit_->selectAll();
}

}  // namespace gui
