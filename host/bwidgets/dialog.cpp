#include "host/bwidgets/dialog.h"

#include <QPushButton>
#include <utility>

#include "host/bwidgets/screen.h"

namespace bwidgets {

Dialog::Dialog(QWidget* parent) : QDialog(parent) {
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
}

Dialog::~Dialog() = default;

void Dialog::resizeToScreen(double width, double height) {
  resize(Screen::fraction(Screen::availableSize(this), width, height));
}

void Dialog::resizeOverWindow(const QSize& wanted) {
  QSize room = Screen::availableSize(parentWidget() != nullptr ? parentWidget() : this);
  if (parentWidget() != nullptr) room = room.boundedTo(parentWidget()->window()->size());
  resize(wanted.boundedTo(room));
}

QDialogButtonBox* Dialog::createButtonBox(QDialogButtonBox::StandardButtons buttons) {
  static const std::pair<QDialogButtonBox::StandardButton, const char*> texts[] = {
      {QDialogButtonBox::Ok, "确定"},    {QDialogButtonBox::Cancel, "取消"},
      {QDialogButtonBox::Yes, "是"},     {QDialogButtonBox::No, "否"},
      {QDialogButtonBox::Close, "关闭"}, {QDialogButtonBox::Apply, "应用"},
      {QDialogButtonBox::Save, "保存"},  {QDialogButtonBox::Open, "打开"},
      {QDialogButtonBox::Reset, "重置"}, {QDialogButtonBox::Help, "帮助"}};
  auto* box = new QDialogButtonBox(buttons, this);
  for (const auto& [button, text] : texts) {
    if (QPushButton* found = box->button(button)) found->setText(QString::fromUtf8(text));
  }
  connect(box, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
  return box;
}

}  // namespace bwidgets
