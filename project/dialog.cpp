#include "project/dialog.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFrame>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionComboBox>
#include <QStylePainter>
#include <QVBoxLayout>

#include "host/app/services.h"
#include "project/checks.h"

namespace gui::qce {

namespace {

QIcon newProjectIcon() {
  return QIcon(QStringLiteral(":/project/新建.png"));
}

/// A choice that says so when there is nothing to choose. (Qt's own placeholder stays unpainted in
/// a box that cannot be edited.)
class ChoiceBox : public QComboBox {
 public:
  using QComboBox::QComboBox;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QStyleOptionComboBox option;
    initStyleOption(&option);
    if (count() == 0) option.currentText = QStringLiteral("（无可选模板）");
    QStylePainter painter(this);
    painter.drawComplexControl(QStyle::CC_ComboBox, option);
    painter.drawControl(QStyle::CE_ComboBoxLabel, option);
  }
};

/// An empty box cannot be opened; a filled one starts at its first item.
void settle(QComboBox* box) {
  box->setEnabled(box->count() > 0);
  box->setCurrentIndex(box->count() > 0 ? 0 : -1);
}

}  // namespace

QCENewProjectViewImpl::QCENewProjectViewImpl(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                          Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint) {
  setWindowTitle(QStringLiteral("新建成本测算"));
  setWindowIcon(newProjectIcon());
  setFixedSize(530, 420);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  buildHead();
  buildForm();
  setReportTemplate();
}

QCENewProjectViewImpl::~QCENewProjectViewImpl() = default;

void QCENewProjectViewImpl::buildHead() {
  head_ = new QWidget(this);
  head_->setObjectName(QStringLiteral("head"));
  head_->setBackgroundRole(QPalette::Base);
  head_->setAutoFillBackground(true);

  auto* picture = new QLabel(head_);
  picture->setStyleSheet(QStringLiteral("border: none;"));
  picture->setPixmap(newProjectIcon().pixmap(48, 48));
  auto* introduction = new QLabel(QStringLiteral("软件支持两种成本测算方式："), head_);
  QFont bold = introduction->font();
  bold.setBold(true);
  introduction->setFont(bold);
  auto* first = new QLabel(QStringLiteral("方式1：直接新建工程"), head_);
  auto* second = new QLabel(QStringLiteral("方式2：选择各地造价标准文件、电子标文件新建"), head_);

  auto* lines = new QVBoxLayout;
  lines->setSpacing(4);
  for (QLabel* line : {introduction, first, second}) lines->addWidget(line);
  auto* row = new QHBoxLayout(head_);
  row->setContentsMargins(24, 12, 24, 12);
  row->setSpacing(16);
  row->addWidget(picture);
  row->addLayout(lines, 1);

  auto* edge = new QFrame(this);
  edge->setFrameShape(QFrame::HLine);
  edge->setFrameShadow(QFrame::Sunken);
  layout()->addWidget(head_);
  layout()->addWidget(edge);
}

void QCENewProjectViewImpl::buildForm() {
  pathEdit_ = new QLineEdit(this);
  pathEdit_->setObjectName(QStringLiteral("path"));
  pathEdit_->setPlaceholderText(QStringLiteral("选择招投标文件或造价标准数据文件"));
  pathEdit_->setClearButtonEnabled(true);
  nameEdit_ = new QLineEdit(this);
  nameEdit_->setObjectName(QStringLiteral("name"));
  costPlanEdit_ = new QLineEdit(this);
  costPlanEdit_->setObjectName(QStringLiteral("costPlan"));
  projectTemplateBox_ = new ChoiceBox(this);
  projectTemplateBox_->setObjectName(QStringLiteral("projectTemplate"));
  tenderButton_ = new QRadioButton(QStringLiteral("投标成本测算"), this);
  targetButton_ = new QRadioButton(QStringLiteral("目标成本测算"), this);
  auto* types = new QButtonGroup(this);
  types->setExclusive(true);
  types->addButton(tenderButton_);
  types->addButton(targetButton_);
  tenderButton_->setChecked(true);
  reportTemplateBox_ = new ChoiceBox(this);
  reportTemplateBox_->setObjectName(QStringLiteral("reportTemplate"));
  for (QComboBox* box : {projectTemplateBox_, reportTemplateBox_}) {
    // A long text must not push the fixed layout apart.
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    settle(box);
  }

  auto* browseButton = new QPushButton(QStringLiteral("浏览"), this);
  auto* createButton = new QPushButton(QStringLiteral("新建"), this);
  auto* cancelButton = new QPushButton(QStringLiteral("取消"), this);
  browseButton->setAutoDefault(false);
  createButton->setDefault(true);

  auto* typeRow = new QHBoxLayout;
  typeRow->setSpacing(24);
  typeRow->addWidget(tenderButton_);
  typeRow->addWidget(targetButton_);
  typeRow->addStretch();

  auto* form = new QGridLayout;
  form->setContentsMargins(24, 14, 24, 0);
  form->setHorizontalSpacing(10);
  form->setVerticalSpacing(9);
  form->setColumnStretch(1, 1);
  int row = 0;
  const auto addRow = [&](const QString& label, QWidget* field, int columns) {
    auto* caption = new QLabel(label, this);
    caption->setBuddy(field);
    form->addWidget(caption, row, 0);
    form->addWidget(field, row++, 1, 1, columns);
  };
  addRow(QStringLiteral("选择文件"), pathEdit_, 1);
  form->addWidget(browseButton, 0, 2);
  addRow(QStringLiteral("工程名称"), nameEdit_, 2);
  addRow(QStringLiteral("成本计划"), costPlanEdit_, 2);
  addRow(QStringLiteral("工程模板"), projectTemplateBox_, 2);
  form->addWidget(new QLabel(QStringLiteral("成本类型"), this), row, 0);
  form->addLayout(typeRow, row++, 1, 1, 2);
  addRow(QStringLiteral("汇报表模板"), reportTemplateBox_, 2);

  auto* buttons = new QHBoxLayout;
  buttons->setContentsMargins(24, 8, 24, 16);
  buttons->setSpacing(10);
  buttons->addStretch();
  buttons->addWidget(createButton);
  buttons->addWidget(cancelButton);

  auto* column = static_cast<QVBoxLayout*>(layout());
  column->addLayout(form);
  column->addStretch();
  column->addLayout(buttons);

  QWidget* previous = pathEdit_;
  for (QWidget* next : std::initializer_list<QWidget*>{
           browseButton, nameEdit_, costPlanEdit_, projectTemplateBox_, tenderButton_,
           targetButton_, reportTemplateBox_, createButton, cancelButton}) {
    setTabOrder(previous, next);
    previous = next;
  }

  connect(browseButton, &QPushButton::clicked, this, &QCENewProjectViewImpl::browse);
  connect(createButton, &QPushButton::clicked, this, &QCENewProjectViewImpl::confirm);
  connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
  connect(pathEdit_, &QLineEdit::textChanged, pathEdit_, &QWidget::setToolTip);
}

void QCENewProjectViewImpl::setController(abst::qce::QCENewProjectController* controller) {
  controller_ = controller;
}

void QCENewProjectViewImpl::setProjectTemplates(std::vector<TextAndValue> templates) {
  projectTemplates_ = std::move(templates);
}

void QCENewProjectViewImpl::prepare() {
  nameEdit_->clear();
  costPlanEdit_->setText(QStringLiteral("成本计划工程"));
  projectTemplateBox_->clear();
  for (const auto& [text, value] : projectTemplates_) {
    projectTemplateBox_->addItem(QString::fromStdString(text), QString::fromStdString(value));
  }
  settle(projectTemplateBox_);
  nameEdit_->setFocus();
}

void QCENewProjectViewImpl::show() {
  prepare();
  QDialog::show();
}

int QCENewProjectViewImpl::exec() {
  prepare();
  return QDialog::exec();
}

void QCENewProjectViewImpl::open() {
  prepare();
  QDialog::open();
}

void QCENewProjectViewImpl::readFilePath(std::string& sourcePath, std::string& projectName) const {
  sourcePath = pathEdit_->text().toStdString();
  projectName = nameEdit_->text().toStdString();
}

std::string QCENewProjectViewImpl::getSelectFileType() const {
  const QString path = pathEdit_->text();
  return path.isEmpty() ? std::string() : path.split(QLatin1Char('.')).last().toStdString();
}

std::string QCENewProjectViewImpl::getType() const {
  for (const QRadioButton* button : {tenderButton_, targetButton_}) {
    if (button->isChecked()) return button->text().toStdString();
  }
  return {};
}

std::string QCENewProjectViewImpl::getReportTemplatePath() const {
  const auto found = reportTemplates_.find(reportTemplateBox_->currentText().toStdString());
  return found != reportTemplates_.end() ? found->second : std::string();
}

std::string QCENewProjectViewImpl::getCostPlanName() const {
  return costPlanEdit_->text().toStdString();
}

std::string QCENewProjectViewImpl::getProjectTemplate() const {
  return projectTemplateBox_->currentData().toString().toStdString();
}

void QCENewProjectViewImpl::setReportTemplate() {
  reportTemplates_.clear();
  reportTemplateBox_->clear();
  const QDir directory(QString::fromStdString(app::GetPathMgr()->getTemplatePath()) +
                       QStringLiteral("/汇报表/汇报表模板"));
  if (directory.exists()) {
    for (const QFileInfo& entry : directory.entryInfoList()) {
      if (entry.suffix().compare(QLatin1String("hbbmb"), Qt::CaseInsensitive) != 0) continue;
      reportTemplates_[entry.fileName().toStdString()] = entry.absoluteFilePath().toStdString();
      reportTemplateBox_->addItem(entry.fileName());
    }
  }
  settle(reportTemplateBox_);
}

QString QCENewProjectViewImpl::chooseFile(const QString& caption, const QString& directory,
                                          const QString& filter) {
  return QFileDialog::getOpenFileName(this, caption, directory, filter);
}

void QCENewProjectViewImpl::browse() {
  const QString path = chooseFile(
      QStringLiteral("打开"),
      QString::fromStdString(app::GetPathMgr()->getPath("DocumentsLocation")),
      QStringLiteral("文件(*.ZBQD *.TBQD *.ZGXJQD *.CZB *.CTB *.GCLQD) ;;招标文件(*.ZBQD);;"
                     "投标文件(*.TBQD);;控制价文件(*.ZGXJQD);;CZB格式(*.CZB);;CTB格式(*.CTB);;"
                     "标准文件(*.GCLQD)"));
  if (path.isEmpty()) return;
  pathEdit_->setText(path);
  pathEdit_->setCursorPosition(0);
  nameEdit_->setText(path.split(QLatin1Char('/')).last().split(QLatin1Char('.')).first());
}

bool QCENewProjectViewImpl::accepts(const QString& problem, QWidget* place) {
  if (problem.isEmpty()) return true;
  app::qce::GetQCEChannel()->message(problem.toStdString(), QMessageBox::Ok);
  place->setFocus();
  if (auto* edit = qobject_cast<QLineEdit*>(place)) edit->selectAll();
  return false;
}

void QCENewProjectViewImpl::confirm() {
  const QString path = pathEdit_->text();
  if (!accepts(SourceFileProblem(path), pathEdit_)) return;
  if (!path.isEmpty() && controller_ != nullptr &&
      !accepts(
          QString::fromStdString(controller_->checkSource(path.toStdString(), getSelectFileType())),
          pathEdit_)) {
    return;
  }
  if (!accepts(ProjectNameProblem(nameEdit_->text()), nameEdit_)) return;
  if (getType().empty()) {
    accepts(QStringLiteral("还没有选择成本类型。\n请选择“投标成本测算”或“目标成本测算”。"),
            tenderButton_);
    return;
  }
  if (controller_ == nullptr || controller_->createProject(*this)) accept();
}

void QCENewProjectViewImpl::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && head_->geometry().contains(event->pos())) {
    grip_ = event->globalPos() - frameGeometry().topLeft();
    event->accept();
    return;
  }
  QDialog::mousePressEvent(event);
}

void QCENewProjectViewImpl::mouseMoveEvent(QMouseEvent* event) {
  if (grip_ && (event->buttons() & Qt::LeftButton) != 0) {
    move(event->globalPos() - *grip_);
    event->accept();
    return;
  }
  QDialog::mouseMoveEvent(event);
}

void QCENewProjectViewImpl::mouseReleaseEvent(QMouseEvent* event) {
  grip_.reset();
  QDialog::mouseReleaseEvent(event);
}

}  // namespace gui::qce
