#include "framework/des_filter_view.h"

#include <QAction>
#include <QCheckBox>
#include <QFormLayout>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace gui::qce::destructors {

DesFilterView::DesFilterView(ViewType viewType, bwidgets::Widget* parent)
    : Widget(parent), viewType_(viewType) {
  setWindowTitle(QStringLiteral("按条件过滤"));

  auto* title = new QLabel(QStringLiteral("按条件过滤"), this);
  title->setObjectName("title");
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);

  auto* line = new QFrame(this);
  line->setFrameShape(QFrame::HLine);
  line->setFrameShadow(QFrame::Sunken);

  auto* form = new QFormLayout;
  form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form->setHorizontalSpacing(8);
  form->setVerticalSpacing(6);
  cbkmEdit_ = addBox(form, QStringLiteral("成本科目:"), QStringLiteral("cbkm"));
  codeEdit_ = addBox(form, QStringLiteral("编  码:"), QStringLiteral("code"));
  nameEdit_ = addBox(form, QStringLiteral("名  称:"), QStringLiteral("name"));
  // Resource items have no features; their fourth condition is held against 规格型号.
  featureEdit_ =
      addBox(form, viewType_ == ResItem ? QStringLiteral("规格型号:") : QStringLiteral("项目特征:"),
             QStringLiteral("feature"));
  unitEdit_ = addBox(form, QStringLiteral("单  位:"), QStringLiteral("unit"));

  showChildrenBox_ = new QCheckBox(QStringLiteral("显示下级内容"), this);
  showSiblingBox_ = new QCheckBox(QStringLiteral("显示同级内容"), this);
  showChildrenBox_->setToolTip(QStringLiteral("同时显示符合条件的行的所有下级"));
  showSiblingBox_->setToolTip(QStringLiteral("同时显示与符合条件的行同级的行"));
  auto* boxes = new QHBoxLayout;
  boxes->setSpacing(16);
  boxes->addWidget(showChildrenBox_);
  boxes->addWidget(showSiblingBox_);
  boxes->addStretch();
  showChildrenBox_->setVisible(viewType_ == SubEngineering);
  showSiblingBox_->setVisible(viewType_ == SubEngineering);

  startButton_ = new QPushButton(QStringLiteral("开始过滤"), this);
  cancelButton_ = new QPushButton(QStringLiteral("取消过滤"), this);
  resetButton_ = new QPushButton(QStringLiteral("清空所有过滤内容"), this);
  // Return belongs to the start button alone, also where the panel stands in a dialog.
  for (QPushButton* button : {startButton_, cancelButton_, resetButton_}) {
    button->setAutoDefault(false);
  }
  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addWidget(startButton_, 1);
  buttons->addWidget(cancelButton_, 1);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(12, 10, 12, 12);
  layout->setSpacing(8);
  layout->addWidget(title);
  layout->addWidget(line);
  layout->addLayout(form);
  layout->addLayout(boxes);
  layout->addSpacing(2);
  layout->addLayout(buttons);
  layout->addWidget(resetButton_);
  layout->addStretch();

  QWidget* previous = unitEdit_;
  for (QWidget* next : std::initializer_list<QWidget*>{showChildrenBox_, showSiblingBox_,
                                                       startButton_, cancelButton_, resetButton_}) {
    setTabOrder(previous, next);
    previous = next;
  }
  setFocusProxy(cbkmEdit_);

  connect(resetButton_, &QPushButton::clicked, this, &DesFilterView::resetConditions);
}

DesFilterView::~DesFilterView() = default;

QLineEdit* DesFilterView::addBox(QFormLayout* form, const QString& label, const QString& name) {
  auto* edit = new QLineEdit(this);
  edit->setObjectName(name);
  edit->setClearButtonEnabled(true);
  edit->setMinimumWidth(150);
  auto* caption = new QLabel(label, this);
  caption->setBuddy(edit);
  form->addRow(caption, edit);
  return edit;
}

std::string DesFilterView::getCbkm() const {
  return cbkmEdit_->text().toStdString();
}
void DesFilterView::setCbkm(const std::string& text) {
  cbkmEdit_->setText(QString::fromStdString(text));
}
std::string DesFilterView::getCode() const {
  return codeEdit_->text().toStdString();
}
std::string DesFilterView::getName() const {
  return nameEdit_->text().toStdString();
}
std::string DesFilterView::getFeature() const {
  return featureEdit_->text().toStdString();
}
std::string DesFilterView::getUnit() const {
  return unitEdit_->text().toStdString();
}

std::vector<std::string> DesFilterView::conditions() const {
  return {getCbkm(), getCode(), getName(), getFeature(), getUnit()};
}

void DesFilterView::setSwitch(QAction* action, QWidget* grid) {
  switch_ = action;
  action->setCheckable(true);
  setVisible(action->isChecked());
  connect(action, &QAction::toggled, this, [this, grid](bool shown) {
    setVisible(shown);
    (shown ? this : grid)->setFocus();
  });
}

void DesFilterView::setOn(bool on) {
  on_ = on;
  if (switch_ == nullptr) return;  // a page that always shows the panel has none
  QPalette colors;
  if (on) colors.setColor(QPalette::ButtonText, QColor(198, 40, 40));
  for (QWidget* shown : switch_->associatedWidgets()) {
    if (auto* button = qobject_cast<QToolButton*>(shown)) button->setPalette(colors);
  }
}

void DesFilterView::resetConditions() {
  for (QLineEdit* edit : {cbkmEdit_, codeEdit_, nameEdit_, featureEdit_, unitEdit_}) {
    edit->clear();
  }
}

void DesFilterView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Space:
      // Accepted and dropped: passed on, it would check or press something in the page behind.
      event->accept();
      break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      startButton_->click();
      event->accept();
      break;
    default:
      Widget::keyPressEvent(event);
  }
}

}  // namespace gui::qce::destructors
