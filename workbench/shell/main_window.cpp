#include "workbench/shell/main_window.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <QUndoStack>

#include "workbench/controllers/open_project.h"
#include "workbench/services/templates.h"
#include "workbench/shell/application.h"
#include "workbench/shell/changed_rows.h"
#include "workbench/shell/elided_label.h"
#include "workbench/shell/new_project.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/progress.h"
#include "workbench/shell/report.h"
#include "workbench/shell/session.h"
#include "workbench/shell/spreadsheet_saver.h"
#include "workbench/shell/welcome_view.h"
#include "workbench/store/project_file.h"

namespace shell {

namespace {

constexpr int kSmallestZoom = 60;  // per cent
constexpr int kLargestZoom = 240;
constexpr int kZoomStep = 10;
constexpr int kExportedTime = 15000;  // ms that the message of an export stands

constexpr char kGeometryKey[] = "window.geometry";
constexpr char kLayoutKey[] = "window.pageList";
constexpr char kZoomKey[] = "window.zoom";
constexpr char kPageKey[] = "window.page";
constexpr char kReportFolderKey[] = "report.folder";

QByteArray bytesOf(const services::Configuration& configuration, const char* key) {
  return QByteArray::fromBase64(
      QByteArray::fromStdString(configuration.getValue(key).value_or("")));
}

/// The menu and the tool tip say what the step is; the tool bar must not change its width with it.
void nameStep(QAction* action, const QString& verb, const QString& step) {
  const QString text = QStringLiteral("%1 %2").arg(verb, step).trimmed();
  action->setText(text);
  action->setIconText(verb);
  action->setToolTip(
      QStringLiteral("%1（%2）").arg(text, action->shortcut().toString(QKeySequence::NativeText)));
}

}  // namespace

MainWindow::MainWindow(services::Installed& services)
    : services_(services),
      chooser_(std::make_unique<FileChooser>()),
      recent_(services.paths().data()),
      spreadsheets_(std::make_unique<SpreadsheetSaver>(
          services,
          [this](const QString& suggestion) {
            return chooser_->spreadsheetToWrite(this, suggestion);
          },
          [this](const QString& path) {
            tellExported(QStringLiteral("已导出 %1").arg(QDir::toNativeSeparators(path)),
                         QFileInfo(path).absolutePath());
          })),
      centre_(new QStackedWidget),
      welcome_(new WelcomeView),
      pages_(new PageStack),
      totalsTimer_(new QTimer(this)) {
  setObjectName(QStringLiteral("mainWindow"));
  centre_->addWidget(welcome_);
  centre_->addWidget(pages_);
  setCentralWidget(centre_);
  createActions();
  createStatusBar();

  totalsTimer_->setSingleShot(true);
  totalsTimer_->setInterval(50);  // many edits in a row cost one sum
  connect(totalsTimer_, &QTimer::timeout, this, &MainWindow::refreshTotals);
  connect(welcome_, &WelcomeView::newRequested, this, &MainWindow::newProject);
  connect(welcome_, &WelcomeView::openRequested, this, &MainWindow::openWithChooser);
  connect(welcome_, &WelcomeView::recentRequested, this, &MainWindow::openProject);
  connect(welcome_, &WelcomeView::forgetRequested, this, [this](const QString& path) {
    recent_.remove(path);
    refreshRecent();
  });
  connect(pages_, &PageStack::currentPageChanged, this, [this](const QString& key) {
    if (!key.isEmpty()) services_.configuration().setValue(kPageKey, key.toStdString());
    refreshExport();
  });

  if (auto* boxes = dynamic_cast<services::MessageBoxChannel*>(&services_.channel())) {
    boxes->setWindow(this);
  }
  services_.setSpreadsheets(spreadsheets_.get());
  restoreWindowState();
  refreshRecent();
  refreshState();
}

MainWindow::~MainWindow() {
  closeProject();
  services_.setSpreadsheets(nullptr);
}

void MainWindow::setFileChooser(std::unique_ptr<FileChooser> chooser) {
  chooser_ = std::move(chooser);
}

QAction* MainWindow::addAction(QMenu* menu, const QString& name, const QString& text,
                               const QString& icon, const QList<QKeySequence>& keys,
                               void (MainWindow::*slot)()) {
  QAction* action = menu->addAction(text, this, slot);
  action->setObjectName(name);
  if (!icon.isEmpty()) action->setIcon(QIcon(QStringLiteral(":/qce/icons/%1.svg").arg(icon)));
  action->setShortcuts(keys);
  const QString plain = text.section(QLatin1Char('('), 0, 0);
  action->setIconText(plain);
  action->setToolTip(
      keys.isEmpty()
          ? plain
          : QStringLiteral("%1（%2）").arg(plain, keys.first().toString(QKeySequence::NativeText)));
  return action;
}

void MainWindow::createActions() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("文件(&F)"));
  QAction* make = addAction(file, QStringLiteral("actionNew"), QStringLiteral("新建(&N)…"),
                            QStringLiteral("new"), {QKeySequence(QStringLiteral("Ctrl+N"))},
                            &MainWindow::newProject);
  QAction* open = addAction(file, QStringLiteral("actionOpen"), QStringLiteral("打开(&O)…"),
                            QStringLiteral("open"), {QKeySequence(QStringLiteral("Ctrl+O"))},
                            &MainWindow::openWithChooser);
  recentMenu_ = file->addMenu(QStringLiteral("最近的工程(&R)"));
  recentMenu_->setObjectName(QStringLiteral("menuRecent"));
  file->addSeparator();
  QAction* save =
      addAction(file, QStringLiteral("actionSave"), QStringLiteral("保存(&S)"), QString(),
                {QKeySequence(QStringLiteral("Ctrl+S"))}, &MainWindow::tellSaved);
  QAction* saveAs =
      addAction(file, QStringLiteral("actionSaveAs"), QStringLiteral("另存为(&A)…"),
                QStringLiteral("save-as"), {QKeySequence(QStringLiteral("Ctrl+Shift+S"))},
                &MainWindow::saveCopyAs);
  export_ = addAction(file, QStringLiteral("actionExport"), QStringLiteral("导出Excel(&E)…"),
                      QStringLiteral("export"), {QKeySequence(QStringLiteral("Ctrl+E"))},
                      &MainWindow::exportPage);
  QAction* report =
      addAction(file, QStringLiteral("actionReport"), QStringLiteral("导出报表(&P)…"), QString(),
                {QKeySequence(QStringLiteral("Ctrl+Shift+E"))}, &MainWindow::exportReport);
  QAction* close = addAction(file, QStringLiteral("actionClose"), QStringLiteral("关闭工程(&C)"),
                             QStringLiteral("close"), {QKeySequence(QStringLiteral("Ctrl+W"))},
                             &MainWindow::closeProject);
  file->addSeparator();
  QAction* quit = file->addAction(QStringLiteral("退出(&X)"), this, &QWidget::close);
  quit->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));

  QMenu* edit = menuBar()->addMenu(QStringLiteral("编辑(&E)"));
  undo_ = edit->addAction(QIcon(QStringLiteral(":/qce/icons/undo.svg")), QStringLiteral("撤销"));
  undo_->setObjectName(QStringLiteral("actionUndo"));
  undo_->setShortcut(QKeySequence(QStringLiteral("Ctrl+Z")));
  redo_ = edit->addAction(QIcon(QStringLiteral(":/qce/icons/redo.svg")), QStringLiteral("恢复"));
  redo_->setObjectName(QStringLiteral("actionRedo"));
  redo_->setShortcuts(
      {QKeySequence(QStringLiteral("Ctrl+Y")), QKeySequence(QStringLiteral("Ctrl+Shift+Z"))});
  edit->addSeparator();
  QAction* find = addAction(edit, QStringLiteral("actionFind"), QStringLiteral("查找(&F)…"),
                            QStringLiteral("find"), {QKeySequence(QStringLiteral("Ctrl+F"))},
                            &MainWindow::showFind);

  QMenu* view = menuBar()->addMenu(QStringLiteral("视图(&V)"));
  QAction* in = addAction(
      view, QStringLiteral("actionZoomIn"), QStringLiteral("放大(&I)"), QStringLiteral("zoom-in"),
      {QKeySequence(QStringLiteral("Ctrl++")), QKeySequence(QStringLiteral("Ctrl+="))},
      &MainWindow::zoomIn);
  QAction* out = addAction(view, QStringLiteral("actionZoomOut"), QStringLiteral("缩小(&O)"),
                           QStringLiteral("zoom-out"), {QKeySequence(QStringLiteral("Ctrl+-"))},
                           &MainWindow::zoomOut);
  QAction* whole =
      addAction(view, QStringLiteral("actionZoomReset"), QStringLiteral("100%(&R)"), QString(),
                {QKeySequence(QStringLiteral("Ctrl+0"))}, &MainWindow::resetZoom);

  QMenu* help = menuBar()->addMenu(QStringLiteral("帮助(&H)"));
  addAction(help, QStringLiteral("actionHelp"), QStringLiteral("使用说明(&H)"), QString(),
            {QKeySequence(Qt::Key_F1)}, &MainWindow::showHelp);
  addAction(help, QStringLiteral("actionAbout"), QStringLiteral("关于(&A)"), QString(), {},
            &MainWindow::about);

  auto* bar = new QToolBar(QStringLiteral("工具栏"), this);
  bar->setObjectName(QStringLiteral("toolBar"));  // the sheet knows it by its name
  addToolBar(bar);
  bar->setMovable(false);
  bar->setIconSize(QSize(18, 18));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  bar->setContextMenuPolicy(Qt::PreventContextMenu);
  bar->addActions({make, open});
  bar->addSeparator();
  bar->addActions({undo_, redo_});
  bar->addSeparator();
  bar->addActions({find, export_});
  bar->addSeparator();
  bar->addActions({in, out, whole});
  needProject_ = {save, saveAs, report, close, find, in, out, whole};

  const auto go = [this](void (QUndoStack::*step)(), const QString& done, const QString& name) {
    QUndoStack& stack = session_->undoStack();
    const int before = stack.index();
    const ChangedRows changed(session_->project().project());
    (stack.*step)();
    const Page* page = currentPage();
    if (stack.index() == before || page == nullptr || changed.show(*page->widget, name)) return;
    statusBar()->showMessage(QStringLiteral("%1“%2”（当前表格中没有所改的行）").arg(done, name),
                             5000);
  };
  connect(undo_, &QAction::triggered, this, [this, go] {
    if (session_) go(&QUndoStack::undo, QStringLiteral("已撤销"), session_->undoStack().undoText());
  });
  connect(redo_, &QAction::triggered, this, [this, go] {
    if (session_) go(&QUndoStack::redo, QStringLiteral("已恢复"), session_->undoStack().redoText());
  });
}

void MainWindow::createStatusBar() {
  sourceMoney_ = new ElidedLabel;
  sourceMoney_->setObjectName(QStringLiteral("sourceMoneyText"));
  // Only what the totals leave: they give way last.
  sourceMoney_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  totals_ = new ElidedLabel;
  totals_->setObjectName(QStringLiteral("totalsText"));
  saved_ = new QLabel;
  saved_->setObjectName(QStringLiteral("savedText"));
  openFolder_ = new QToolButton;
  openFolder_->setObjectName(QStringLiteral("openFolder"));
  openFolder_->setText(QStringLiteral("打开文件夹"));
  openFolder_->setFixedHeight(openFolder_->fontMetrics().height() + 4);  // as high as the bar is
  connect(openFolder_, &QToolButton::clicked, this, &MainWindow::openExportFolder);
  connect(statusBar(), &QStatusBar::messageChanged, this, &MainWindow::onStatusMessage);
  statusBar()->addWidget(sourceMoney_, 1);
  statusBar()->addPermanentWidget(openFolder_);
  openFolder_->hide();
  statusBar()->addPermanentWidget(totals_);
  statusBar()->addPermanentWidget(saved_);
  statusBar()->setSizeGripEnabled(false);
  statusBar()->setContentsMargins(6, 0, 10, 0);
}

bool MainWindow::openProject(const QString& path) {
  const QString absolute = QFileInfo(path).absoluteFilePath();
  if (session_ && store::isSameFile(session_->path(), absolute)) return true;
  store::Failure failure;
  std::unique_ptr<Session> opened;
  {
    Progress progress(this, QStringLiteral("正在打开“%1”…").arg(QFileInfo(path).fileName()));
    opened = Session::open(absolute, failure,
                           [&progress](int percent) { return progress.step(percent, 100); });
  }
  if (!opened) {
    tellFailure(failure, absolute);
    return false;
  }
  closeProject();
  session_ = std::move(opened);
  services_.setUndo(&session_->undoService());
  connectUndo();
  for (const Page& page : session_->makePages()) {
    pages_->addPage(page.key, page.title, page.icon, page.widget, page.view);
  }
  applyZoom();
  recent_.add(absolute);
  refreshRecent();
  refreshState();
  const QString last =
      QString::fromStdString(services_.configuration().getValue(kPageKey).value_or(""));
  if (!pages_->setCurrentPage(last)) pages_->setCurrentPage(pages_->pages().value(0));
  return true;
}

void MainWindow::tellFailure(const store::Failure& failure, const QString& path) {
  if (failure.kind == store::FailureKind::Cancelled) return;
  app::Channel& channel = services_.channel();
  if (failure.kind != store::FailureKind::Missing || !recent_.contains(path)) {
    channel.message(failure.message.toStdString(), QMessageBox::Ok);
    return;
  }
  const QString question = failure.message + QStringLiteral("\n\n要从“最近的工程”中移除它吗？");
  if (channel.message(question.toStdString(), QMessageBox::Yes | QMessageBox::No) ==
      QMessageBox::Yes) {
    recent_.remove(path);
    refreshRecent();
  }
}

void MainWindow::closeProject() {
  if (!session_) return;
  pages_->clear();
  session_->dropPages();
  services_.setUndo(nullptr);
  session_->undoStack().disconnect(this);  // it tells of its steps also while they are destroyed
  session_.reset();
  sourceMoney_->setText({});
  sourceMoney_->setToolTip({});
  refreshState();
}

void MainWindow::connectUndo() {
  QUndoStack& stack = session_->undoStack();
  const auto refresh = [this] {
    const QUndoStack& undo = session_->undoStack();
    undo_->setEnabled(undo.canUndo());
    redo_->setEnabled(undo.canRedo());
    nameStep(undo_, QStringLiteral("撤销"), undo.undoText());
    nameStep(redo_, QStringLiteral("恢复"), undo.redoText());
  };
  connect(&stack, &QUndoStack::indexChanged, this, refresh);
  connect(session_.get(), &Session::changed, totalsTimer_, qOverload<>(&QTimer::start));
  connect(session_.get(), &Session::pageWanted, pages_, &PageStack::setCurrentPage);
  refresh();
}

void MainWindow::newProject() {
  const NewProjectResult made = runNewProject(this, *chooser_, services_.paths().documents());
  if (made.path.isEmpty()) return;
  services_.configuration().setValue(kPageKey, "resources");
  if (!openProject(made.path)) return;
  sourceMoney_->setText(made.money.summary);
  sourceMoney_->setToolTip(made.money.details);
}

void MainWindow::openWithChooser() {
  const QString start = recent_.entries().empty()
                            ? services_.paths().documents()
                            : QFileInfo(recent_.entries().front().path).path();
  const QString path = chooser_->projectToOpen(this, start);
  if (!path.isEmpty()) openProject(path);
}

// Nothing is left to save, but hands that are used to the key want to hear so.
void MainWindow::tellSaved() {
  statusBar()->showMessage(QStringLiteral("已保存：每一次修改都立即写入 %1")
                               .arg(QDir::toNativeSeparators(session_->path())),
                           5000);
}

void MainWindow::saveCopyAs() {
  if (!session_) return;
  const QFileInfo current(session_->path());
  const QString path =
      chooser_->projectToWrite(this, current.path() + QLatin1Char('/') +
                                         current.completeBaseName() + QStringLiteral("-副本.qcp"));
  if (path.isEmpty()) return;
  store::Failure failure;
  if (!session_->saveCopy(path, failure)) {
    tellFailure(failure, path);
    return;
  }
  openProject(path);
}

const Page* MainWindow::currentPage() const {
  return session_ ? session_->page(pages_->currentPage()) : nullptr;
}

void MainWindow::exportPage() {
  const Page* page = currentPage();
  if (page != nullptr && page->exportGrid) page->exportGrid();
}

void MainWindow::exportReport() {
  if (!session_) return;
  const QString folder = chooser_->folderToWrite(this, reportFolder());
  if (folder.isEmpty()) return;
  app::Channel& channel = services_.channel();
  QStringList there;
  for (const QString& name : reportFileNames()) {
    if (QFileInfo::exists(QDir(folder).filePath(name))) there << name;
  }
  if (!there.isEmpty()) {
    const QString question =
        QStringLiteral("文件夹“%1”中已有下列文件，要替换它们吗？\n%2")
            .arg(QDir::toNativeSeparators(folder), there.join(QLatin1Char('\n')));
    if (channel.message(question.toStdString(), QMessageBox::Yes | QMessageBox::No) !=
        QMessageBox::Yes) {
      return;
    }
  }
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const records::FeeTemplate fees =
      services::loadFeeTemplate(QString::fromStdString(services_.paths().getTemplatePath()));
  const ReportResult written = writeReport(session_->project().project(), fees, folder);
  QApplication::restoreOverrideCursor();
  if (!written.problem.isEmpty()) {
    channel.message(written.problem.toStdString(), QMessageBox::Ok);
    return;
  }
  services_.configuration().setValue(kReportFolderKey, folder.toStdString());
  tellExported(QStringLiteral("已导出 %1 个文件到 %2")
                   .arg(written.files.size())
                   .arg(QDir::toNativeSeparators(folder)),
               folder);
}

void MainWindow::tellExported(const QString& text, const QString& folder) {
  exported_ = text;
  exportFolder_ = folder;
  openFolder_->setToolTip(QDir::toNativeSeparators(folder));
  statusBar()->showMessage(text, kExportedTime);
}

// A message is read whole, where there is little room in the place of the totals.
void MainWindow::onStatusMessage(const QString& text) {
  openFolder_->setVisible(!text.isEmpty() && text == exported_);
  int needed = fontMetrics().horizontalAdvance(text + QStringLiteral("　　"));
  for (const QWidget* beside : {static_cast<QWidget*>(openFolder_), static_cast<QWidget*>(totals_),
                                static_cast<QWidget*>(saved_)}) {
    if (beside != openFolder_ || openFolder_->isVisibleTo(this)) {
      needed += beside->sizeHint().width();
    }
  }
  totals_->setVisible(text.isEmpty() || needed <= statusBar()->width());
}

void MainWindow::openExportFolder() {
  if (chooser_->showFolder(exportFolder_)) return;
  services_.channel().message(QStringLiteral("不能打开文件夹“%1”。\n请在文件管理器中打开它。")
                                  .arg(QDir::toNativeSeparators(exportFolder_))
                                  .toStdString(),
                              QMessageBox::Ok);
}

/// Where the last report went; at first, where the project is.
QString MainWindow::reportFolder() const {
  const QString last =
      QString::fromStdString(services_.configuration().getValue(kReportFolderKey).value_or(""));
  return QFileInfo(last).isDir() ? last : QFileInfo(session_->path()).path();
}

void MainWindow::refreshExport() {
  const Page* page = currentPage();
  export_->setEnabled(page != nullptr && page->exportGrid);
}

void MainWindow::showFind() {
  if (const Page* page = currentPage()) page->find();
}

void MainWindow::zoomIn() {
  setZoom(zoom_ + kZoomStep);
}

void MainWindow::zoomOut() {
  setZoom(zoom_ - kZoomStep);
}

void MainWindow::resetZoom() {
  setZoom(100);
}

void MainWindow::setZoom(int percent) {
  zoom_ = qBound(kSmallestZoom, percent, kLargestZoom);
  services_.configuration().setValue(kZoomKey, std::to_string(zoom_));
  applyZoom();
}

void MainWindow::applyZoom() {
  findChild<QAction*>(QStringLiteral("actionZoomReset"))
      ->setIconText(QStringLiteral("%1%").arg(zoom_));
  if (!session_) return;
  for (const QString& key : pages_->pages()) session_->page(key)->setZoom(zoom_);
}

void MainWindow::about() {
  QMessageBox box(QMessageBox::NoIcon, QStringLiteral("关于成本测算"),
                  QStringLiteral("<b>成本测算工作台</b> %1").arg(QLatin1String(kVersion)),
                  QMessageBox::Ok, this);
  box.setInformativeText(
      QStringLiteral("由招标、投标或控制价文件新建成本测算工程，调整人材机价格并核对成本合计。\n"
                     "每一次修改都立即写入工程文件。"));
  box.setIconPixmap(QApplication::windowIcon().pixmap(48, 48));
  box.button(QMessageBox::Ok)->setText(QStringLiteral("确定"));
  box.exec();
}

void MainWindow::showHelp() {
  QMessageBox box(QMessageBox::NoIcon, QStringLiteral("使用说明"),
                  QStringLiteral("<b>常用操作</b>"), QMessageBox::Ok, this);
  box.setInformativeText(QStringLiteral(
      "<table cellspacing='6' style='white-space:nowrap'>"
      "<tr><td>Ctrl+N / Ctrl+O</td><td>新建 / 打开工程</td></tr>"
      "<tr><td>F2 或双击</td><td>编辑单元格，回车确认，Esc 恢复原值</td></tr>"
      "<tr><td>Ctrl+C / Ctrl+V / Delete</td><td>复制 / 粘贴 / 清除一块单元格</td></tr>"
      "<tr><td>Ctrl+Z / Ctrl+Y</td><td>撤销 / 恢复</td></tr>"
      "<tr><td>Ctrl+B</td><td>把同一个单价写入选中的人材机</td></tr>"
      "<tr><td>Ctrl+K / Ctrl+L / Ctrl+G</td>"
      "<td>人材机归集：设置成本科目 / 关联到成本 / 设置归集</td></tr>"
      "<tr><td>Shift+F2</td><td>编辑批注</td></tr>"
      "<tr><td>Alt+↑ / Alt+↓</td><td>上移 / 下移选中的行</td></tr>"
      "<tr><td>Insert / Ctrl+Delete</td><td>新增 / 删除间接费、分包</td></tr>"
      "<tr><td>空格或双击</td><td>在分包设置中关联清单，或取消关联</td></tr>"
      "<tr><td>Ctrl+E</td><td>把当前页面的表格导出为 Excel 文件</td></tr>"
      "<tr><td>Ctrl+Shift+E</td><td>把三种汇总和间接费用导出为 Excel 文件和 PDF 报表</td></tr>"
      "<tr><td>Ctrl+F</td><td>在表格中查找，可用拼音首字母（lwg 找到螺纹钢）</td></tr>"
      "<tr><td>Ctrl+Shift+F</td><td>按成本科目、编码、名称等条件过滤</td></tr>"
      "<tr><td>单击表头 / F5</td><td>按该列排序 / 恢复原来的顺序</td></tr>"
      "<tr><td>Ctrl++ / Ctrl+- / Ctrl+0</td><td>放大 / 缩小 / 恢复 100%</td></tr>"
      "<tr><td>右键</td><td>当前单元格的全部命令</td></tr>"
      "</table>"));
  box.button(QMessageBox::Ok)->setText(QStringLiteral("确定"));
  box.exec();
}

void MainWindow::refreshRecent() {
  welcome_->setRecentFiles(recent_.entries());
  recentMenu_->clear();
  for (const RecentFile& file : recent_.entries()) {
    QString text = QFileInfo(file.path).completeBaseName();
    QAction* action = recentMenu_->addAction(text.replace(QLatin1Char('&'), QStringLiteral("&&")));
    action->setToolTip(QDir::toNativeSeparators(file.path));
    connect(action, &QAction::triggered, this, [this, path = file.path] { openProject(path); });
  }
  recentMenu_->setToolTipsVisible(true);
  recentMenu_->setEnabled(!recent_.entries().empty());
}

void MainWindow::refreshState() {
  const bool open = session_ != nullptr;
  centre_->setCurrentWidget(open ? static_cast<QWidget*>(pages_) : welcome_);
  for (QAction* action : needProject_) action->setEnabled(open);
  refreshExport();
  if (open) {
    setWindowTitle(QStringLiteral("%1（%2）").arg(session_->name(), session_->type()));
    setWindowFilePath(session_->path());
  } else {
    setWindowTitle(QString());
    setWindowFilePath(QString());
    for (QAction* action : {undo_, redo_}) action->setEnabled(false);
    nameStep(undo_, QStringLiteral("撤销"), {});
    nameStep(redo_, QStringLiteral("恢复"), {});
  }
  // Nothing is ever left to save: an edit is in the file before it is shown.
  saved_->setText(open ? QStringLiteral("已保存") : QString());
  saved_->setToolTip(
      open ? QStringLiteral("每一次修改都已写入 %1").arg(QDir::toNativeSeparators(session_->path()))
           : QString());
  refreshTotals();
}

void MainWindow::refreshTotals() {
  if (!session_) {
    totals_->clear();
    totals_->setToolTip({});
    return;
  }
  const Session::Totals totals = session_->totals();
  const QString subcontracts = totals.subcontracts.isEmpty()
                                   ? QString()
                                   : QStringLiteral("　　分包成本 ") + totals.subcontracts;
  totals_->setText(
      QStringLiteral("预算合价 %1　　人材机成本 %2（含税 %3）　　间接费成本 %4%5　　共 %6 项")
          .arg(totals.budget, totals.excludingTax, totals.includingTax, totals.fees, subcontracts)
          .arg(totals.items));
  totals_->setToolTip(totals_->text());
}

void MainWindow::saveWindowState() {
  services::Configuration& configuration = services_.configuration();
  configuration.setValue(kGeometryKey, saveGeometry().toBase64().toStdString());
  configuration.setValue(kLayoutKey, pages_->saveLayout().toBase64().toStdString());
}

void MainWindow::restoreWindowState() {
  const services::Configuration& configuration = services_.configuration();
  resize(1360, 820);
  const QByteArray geometry = bytesOf(configuration, kGeometryKey);
  if (!geometry.isEmpty()) restoreGeometry(geometry);
  const QByteArray layout = bytesOf(configuration, kLayoutKey);
  if (!layout.isEmpty()) pages_->restoreLayout(layout);
  const int zoom = QString::fromStdString(configuration.getValue(kZoomKey).value_or("100")).toInt();
  zoom_ = zoom == 0 ? 100 : qBound(kSmallestZoom, zoom, kLargestZoom);
  applyZoom();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  saveWindowState();
  event->accept();
}

}  // namespace shell
