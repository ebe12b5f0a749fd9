#include <QAction>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <QUndoStack>
#include <QtTest>

#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "workbench/cli/driver.h"
#include "workbench/cli/sheet_check.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/exchange/source_reader.h"
#include "workbench/exchange/spreadsheet_reader.h"
#include "workbench/services/install.h"
#include "workbench/shell/application.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"
#include "workbench/store/project_file.h"

namespace {

class GivenFile : public shell::FileChooser {
 public:
  explicit GivenFile(QString path) : path_(std::move(path)) {}
  QString projectToOpen(QWidget*, const QString&) override { return path_; }
  QString projectToWrite(QWidget*, const QString& suggestion) override {
    suggested = suggestion;
    return path_;
  }
  QString spreadsheetToWrite(QWidget*, const QString& suggestion) override {
    ++asked;
    suggested = suggestion;
    return path_;
  }
  QString suggested;
  int asked = 0;

 private:
  QString path_;
};

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }

  void init() {
    dir_ = std::make_unique<QTemporaryDir>();
    auto channel = std::make_unique<services::RecordingChannel>();
    channel_ = channel.get();
    services_ = services::install(std::make_unique<services::PathManager>(dir_->path()),
                                  std::move(channel));
    makeProject("甲");
    window_ = std::make_unique<shell::MainWindow>(*services_);
    window_->show();
    QVERIFY(QTest::qWaitForWindowActive(window_.get()));
  }

  void cleanup() {
    window_.reset();
    services_.reset();
    dir_.reset();
  }

  void opensFromTheRecentList() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    QVERIFY(window_->windowTitle().contains("甲"));
    QCOMPARE(window_->pages()->currentPage(), QString("resources"));
    QVERIFY(QFile::exists(dir_->filePath("data/recent_file.json")));
    driver_.key(Qt::Key_W, Qt::ControlModifier);
    QVERIFY(window_->session() == nullptr);
    QVERIFY(!action("actionUndo")->isEnabled());

    auto* list = window_->findChild<QListWidget*>("recentList");
    QVERIFY(list->isVisible());
    QCOMPARE(list->count(), 1);
    driver_.click(list->viewport(), list->visualItemRect(list->item(0)).center());
    driver_.key(Qt::Key_Return);
    QVERIFY(window_->session() != nullptr);
    QCOMPARE(window_->session()->path(), path("甲.qcp"));

    // The same file by another way is what is open already.
    const shell::Session* session = window_->session();
    QVERIFY(QFile::link(path("甲.qcp"), path("链接.qcp")));
    for (const QString& other : {path("链接.qcp"), path("data/../甲.qcp")}) {
      QVERIFY(window_->openProject(other));
      QCOMPARE(window_->session(), session);
    }
    QCOMPARE(channel_->messages().size(), std::size_t(0));
  }

  void offersToForgetAMissingProject() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    window_->closeProject();
    QVERIFY(QFile::remove(path("甲.qcp")));
    auto* list = window_->findChild<QListWidget*>("recentList");
    channel_->answerNext(QMessageBox::No);
    QVERIFY(!window_->openProject(path("甲.qcp")));
    QCOMPARE(list->count(), 1);
    channel_->answerNext(QMessageBox::Yes);
    QVERIFY(!window_->openProject(path("甲.qcp")));
    QCOMPARE(list->count(), 0);
  }

  void aFailedOpeningKeepsTheOpenProject_data() {
    const tests::Rows<QByteArray> row;
    row("missing", QByteArray());
    row("not a project", QByteArray("工程\n").repeated(500));
    row("damaged", QByteArray("SQLite format 3\0", 16) + QByteArray(4000, 'x'));
  }
  void aFailedOpeningKeepsTheOpenProject() {
    const auto [content] = tests::fetch<QByteArray>();
    QVERIFY(window_->openProject(path("甲.qcp")));
    typePrice("77.5");
    if (!content.isEmpty()) tests::writeFile(path("坏.qcp"), content);
    window_->setFileChooser(std::make_unique<GivenFile>(path("坏.qcp")));
    action("actionOpen")->trigger();
    QCOMPARE(channel_->messages().size(), std::size_t(1));
    QVERIFY(channel_->messages()[0].text.find("坏.qcp") != std::string::npos);
    QCOMPARE(window_->session()->path(), path("甲.qcp"));
    QVERIFY(window_->session()->undoStack().canUndo());  // not opened anew
    QCOMPARE(price(), 77.5);
  }

  void undoAndRedoByKeyboardSayWhat() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    const double before = price();
    QVERIFY(!action("actionUndo")->isEnabled());
    typePrice("1234.56");
    QCOMPARE(channel_->messages().size(), std::size_t(0));
    QCOMPARE(price(), 1234.56);
    QVERIFY(action("actionUndo")->text().startsWith("撤销 "));
    driver_.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(price(), before);
    QVERIFY(action("actionRedo")->text().startsWith("恢复 "));
    driver_.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(price(), 1234.56);
    driver_.key(Qt::Key_Z, Qt::ControlModifier);
    driver_.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(price(), 1234.56);
  }

  void totalsFollowAnEdit() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    auto* label = window_->findChild<QLabel*>("totalsText");
    const QString before = label->text();
    QVERIFY2(before.contains(window_->session()->totals().budget), qPrintable(before));
    typePrice("4321.00");
    QTRY_VERIFY(label->text() != before);
    QVERIFY(label->text().contains(window_->session()->totals().excludingTax));
  }

  void saveAsContinuesInTheCopy() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    typePrice("55.50");
    window_->setFileChooser(std::make_unique<GivenFile>(path("乙.qcp")));
    action("actionSaveAs")->trigger();
    QCOMPARE(channel_->messages().size(), std::size_t(0));
    QCOMPARE(window_->session()->path(), path("乙.qcp"));
    QCOMPARE(price(), 55.5);
    typePrice("66.60");
    QVERIFY(window_->openProject(path("甲.qcp")));
    QCOMPARE(price(), 55.5);

    // onto itself: refused, and the project stays as it is
    window_->setFileChooser(std::make_unique<GivenFile>(path("甲.qcp")));
    action("actionSaveAs")->trigger();
    QCOMPARE(channel_->messages().size(), std::size_t(1));
    QCOMPARE(window_->session()->path(), path("甲.qcp"));
    QCOMPARE(price(), 55.5);
  }

  void newProjectAsksWhereToSave() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    auto chooser = std::make_unique<GivenFile>(path("新.qcp"));
    GivenFile* given = chooser.get();
    window_->setFileChooser(std::move(chooser));
    QVERIFY(driver_.withPopup([this] { driver_.key(Qt::Key_N, Qt::ControlModifier); },
                              [this](QWidget* dialog) {
                                driver_.click(dialog->findChild<QLineEdit*>("path"));
                                driver_.type(path("甲.TBQD"));
                                driver_.click(dialog->findChild<QLineEdit*>("name"));
                                driver_.type("新工程");
                                driver_.key(Qt::Key_Return);
                                if (dialog->isVisible()) dialog->close();
                              }));
    QCOMPARE(given->suggested, dir_->filePath("documents/新工程.qcp"));
    QCOMPARE(window_->session()->path(), path("新.qcp"));
    QCOMPARE(window_->session()->name(), QString("新工程"));
    QCOMPARE(window_->pages()->currentPage(), QString("resources"));
    const auto* money = window_->findChild<QLabel*>("sourceMoneyText");
    QVERIFY(money->isVisible());
    QVERIFY2(money->text().startsWith("申报与读入金额一致：清单 "), qPrintable(money->text()));
    QVERIFY(money->text().contains("人材机 " + window_->session()->totals().budget));
    QVERIFY(money->toolTip().contains("申报"));
    window_->closeProject();
    QCOMPARE(money->text(), QString());
  }

  void windowStateOutlivesTheProgram() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    window_->resize(1111, 666);
    const int height = grid()->fontMetrics().height();
    driver_.key(Qt::Key_Plus, Qt::ControlModifier);
    driver_.key(Qt::Key_Plus, Qt::ControlModifier);
    QVERIFY(grid()->fontMetrics().height() > height);
    const int zoomed = grid()->fontMetrics().height();
    window_->close();

    window_ = std::make_unique<shell::MainWindow>(*services_);
    window_->show();
    QCOMPARE(window_->size(), QSize(1111, 666));
    QVERIFY(window_->openProject(path("甲.qcp")));
    QCOMPARE(grid()->fontMetrics().height(), zoomed);
    driver_.key(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(grid()->fontMetrics().height(), height);
  }

  void exportsTheCurrentPage() {
    QAction* exporting = action("actionExport");
    QVERIFY(!exporting->isEnabled());
    QVERIFY(window_->openProject(path("甲.qcp")));
    QVERIFY(exporting->isEnabled());
    auto* chooser = new GivenFile(path("甲-人材机.xlsx"));
    window_->setFileChooser(std::unique_ptr<GivenFile>(chooser));
    grid()->setFocus();
    driver_.key(Qt::Key_E, Qt::ControlModifier);
    QCOMPARE(chooser->asked, 1);  // by one of the two that know the key
    QCOMPARE(chooser->suggested, services_->paths().documents() + "/人材机.xlsx");
    QCOMPARE(channel_->messages().size(), std::size_t(0));
    QVERIFY(window_->statusBar()->currentMessage().contains("甲-人材机.xlsx"));
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(path("甲-人材机.xlsx"));
    QCOMPARE(book.problem, QString());
    QCOMPARE(cli::sheetDifference(book.sheets.at(0), *grid()), QString());

    // The next one starts where the last one went; what cannot be written is told.
    chooser = new GivenFile(path("甲.qcp/人材机.xlsx"));
    window_->setFileChooser(std::unique_ptr<GivenFile>(chooser));
    exporting->trigger();
    QCOMPARE(chooser->suggested, path("人材机.xlsx"));
    QCOMPARE(channel_->messages().size(), std::size_t(1));
    QVERIFY(channel_->messages()[0].text.find("甲.qcp") != std::string::npos);
    window_->setFileChooser(std::make_unique<GivenFile>(QString()));  // cancelled
    exporting->trigger();
    QCOMPARE(channel_->messages().size(), std::size_t(1));
    window_->closeProject();
    QVERIFY(!exporting->isEnabled());
  }

  void readingALargeSourceCanBeCancelled() {
    const QString source = path("大.ZBQD");
    QCOMPARE(exchange::SampleGenerator::generate(100000, 5, source), QString());
    auto chooser = std::make_unique<GivenFile>(path("新.qcp"));
    GivenFile* given = chooser.get();
    window_->setFileChooser(std::move(chooser));
    int cancelled = 0;
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [&cancelled] {
      auto* progress = qobject_cast<QProgressDialog*>(QApplication::activeModalWidget());
      if (progress == nullptr || progress->wasCanceled()) return;
      ++cancelled;
      auto* cancel = progress->findChild<QPushButton*>();
      QCOMPARE(cancel->text(), QString("取消"));
      cancel->click();
    });
    bool stayed = false;
    QVERIFY(driver_.withPopup([this] { driver_.key(Qt::Key_N, Qt::ControlModifier); },
                              [&](QWidget* dialog) {
                                driver_.click(dialog->findChild<QLineEdit*>("path"));
                                driver_.type(source);
                                driver_.click(dialog->findChild<QLineEdit*>("name"));
                                driver_.type("新工程");
                                poll.start(20);
                                driver_.key(Qt::Key_Return);
                                stayed = dialog->isVisible();
                                dialog->close();
                              }));
    QCOMPARE(cancelled, 1);
    QVERIFY(stayed);
    QVERIFY2(given->suggested.isEmpty(), "cancelled only after the reading");
    QVERIFY(!QFile::exists(path("新.qcp")));
    QVERIFY(channel_->messages().empty());
  }

  void theAssociationFilterFollowsBookings() {
    QVERIFY(window_->openProject(path("甲.qcp")));
    const auto rows = [this] { return grid()->model()->rowCount(); };
    driver_.clickCell(grid(), priceCell());
    QVERIFY(driver_.withPopup([this] { driver_.key(Qt::Key_L, Qt::ControlModifier); },
                              [this](QWidget* dialog) {
                                driver_.key(Qt::Key_Space);
                                driver_.key(Qt::Key_Return, Qt::ControlModifier);
                                if (dialog->isVisible()) dialog->close();
                              }));
    QCOMPARE(window_->session()->undoStack().undoText(), QString("关联清单"));
    for (auto* button : window_->findChildren<QToolButton*>()) {
      if (button->text() == "已关联") driver_.click(button);
    }
    QCOMPARE(rows(), 1);
    auto* status = window_->findChild<QLabel*>("ResItem_status");
    QTRY_VERIFY(status->text().startsWith("显示 1 项"));
    driver_.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(rows(), 0);
    QTRY_VERIFY(status->text().startsWith("显示 0 项"));
    driver_.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(rows(), 1);
    QTRY_VERIFY(status->text().startsWith("显示 1 项"));
  }

 private:
  void makeProject(const QString& name) {
    const QString source = path(name + ".TBQD");
    QCOMPARE(exchange::SampleGenerator::generate(40, 5, source), QString());
    const exchange::ReadResult read = exchange::SourceReader().read(source);
    QVERIFY2(read.ok(), qPrintable(read.message()));
    store::NewProject answers;
    answers.name = name;
    answers.costType = "投标成本测算";
    store::Failure failure;
    QVERIFY2(store::ProjectFile::create(path(name + ".qcp"), &read.document, answers, failure),
             qPrintable(failure.message));
  }

  QString path(const QString& name) const { return dir_->filePath(name); }
  QAction* action(const char* name) const { return window_->findChild<QAction*>(name); }
  bwidgets::TreeGridView* grid() const {
    return window_->pages()->currentWidget()->findChild<bwidgets::TreeGridView*>();
  }
  QModelIndex priceCell() const {
    const QAbstractItemModel* model = grid()->model();
    const int column =
        dynamic_cast<const gui::ViewModel&>(*model).getColumnIndex(domain::keys::BRIExcludedTaxFee);
    QModelIndex row = model->index(0, 0);
    while (model->rowCount(row) > 0) row = model->index(0, 0, row);
    return row.sibling(row.row(), column);
  }

  void typePrice(const QString& text) {
    driver_.clickCell(grid(), priceCell());
    driver_.key(Qt::Key_F2);
    driver_.key(Qt::Key_A, Qt::ControlModifier);
    driver_.type(text);
    driver_.key(Qt::Key_Return);
  }

  double price() const { return grid()->model()->data(priceCell(), Qt::EditRole).toDouble(); }

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<services::Installed> services_;
  services::RecordingChannel* channel_ = nullptr;
  std::unique_ptr<shell::MainWindow> window_;
  cli::Driver driver_;
};

QTEST_MAIN(MainWindowTest)
#include "tst_main_window.moc"
