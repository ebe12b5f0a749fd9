
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "tests/workbench/window_fixture.h"

class MainWindowTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { shell::setUpApplication(*qApp); }
  void init() {
    f_ = std::make_unique<tests::WindowFixture>();
    QVERIFY(f_->made);
  }
  void cleanup() { f_.reset(); }

  void opensAProjectByAnyWayOnce() {
    open();
    QVERIFY(f_->window->windowTitle().contains("办公楼"));
    QVERIFY(QFile::exists(f_->path("data/recent_file.json")));
    const shell::Session* session = f_->window->session();
    QVERIFY(QFile::link(f_->project(), f_->path("链接.qcp")));
    for (const char* other : {"链接.qcp", "data/../办公楼.qcp"}) {
      QVERIFY(f_->window->openProject(f_->path(other)));
      QCOMPARE(f_->window->session(), session);
    }
    QCOMPARE(f_->message(), QString());
    f_->window->closeProject();
    QVERIFY(!action("actionUndo")->isEnabled());
  }

  void offersToForgetAMissingProject() {
    open();
    f_->window->closeProject();
    QVERIFY(QFile::remove(f_->project()));
    auto* list = f_->window->findChild<QListWidget*>("recentList");
    for (const int answer : {QMessageBox::No, QMessageBox::Yes}) {
      f_->channel->answerNext(answer);
      QVERIFY(!f_->window->openProject(f_->project()));
      QCOMPARE(list->count(), answer == QMessageBox::No ? 1 : 0);
    }
  }

  void aFailedOpeningKeepsTheOpenProject_data() {
    const tests::Rows<QByteArray> row;
    row("missing", QByteArray());
    row("not a project", QByteArray("工程\n").repeated(500));
    row("damaged", QByteArray("SQLite format 3\0", 16) + QByteArray(4000, 'x'));
  }
  void aFailedOpeningKeepsTheOpenProject() {
    const auto [content] = tests::fetch<QByteArray>();
    open();
    typePrice("77.5");
    if (!content.isEmpty()) tests::writeFile(f_->path("坏.qcp"), content);
    f_->give(f_->path("坏.qcp"));
    action("actionOpen")->trigger();
    QCOMPARE(f_->channel->messages().size(), std::size_t(1));
    QVERIFY(f_->channel->messages()[0].text.find("坏.qcp") != std::string::npos);
    QCOMPARE(f_->window->session()->path(), f_->project());
    QVERIFY(f_->stack().canUndo());  // not opened anew
    QCOMPARE(price(), 77.5);
  }

  void saveAsContinuesInTheCopy() {
    open();
    typePrice("55.50");
    f_->give(f_->path("乙.qcp"));
    action("actionSaveAs")->trigger();
    QCOMPARE(f_->channel->messages().size(), std::size_t(0));
    QCOMPARE(f_->window->session()->path(), f_->path("乙.qcp"));
    QCOMPARE(price(), 55.5);
    typePrice("66.60");
    open();
    QCOMPARE(price(), 55.5);

    // onto itself: refused, and the project stays as it is
    f_->give(f_->project());
    action("actionSaveAs")->trigger();
    QCOMPARE(f_->channel->messages().size(), std::size_t(1));
    QCOMPARE(f_->window->session()->path(), f_->project());
    QCOMPARE(price(), 55.5);
  }

  void aNewProjectIsHeldAgainstItsSource() {
    open();
    const tests::GivenFile* given = f_->give(f_->path("新.qcp"));
    QVERIFY(makeNewProject(QStringLiteral(QCE_SOURCE_DIR "/samples/办公楼.TBQD"), [] {}));
    QCOMPARE(given->suggested, QStringList(f_->path("documents/新工程.qcp")));
    QCOMPARE(f_->window->session()->path(), f_->path("新.qcp"));
    const auto* money = f_->window->findChild<QLabel*>("sourceMoneyText");
    QVERIFY(money->isVisible());
    QVERIFY2(money->text().startsWith("申报与读入金额一致：清单 "), qPrintable(money->text()));
    QVERIFY(money->text().contains("人材机 " + f_->window->session()->totals().budget));
    QVERIFY(money->toolTip().contains("申报"));
    f_->window->closeProject();
    QCOMPARE(money->text(), QString());
  }

  void windowStateOutlivesTheProgram() {
    open();
    f_->window->resize(1111, 666);
    const int height = grid()->fontMetrics().height();
    f_->driver.key(Qt::Key_Plus, Qt::ControlModifier);
    f_->driver.key(Qt::Key_Plus, Qt::ControlModifier);
    QVERIFY(grid()->fontMetrics().height() > height);
    const int zoomed = grid()->fontMetrics().height();
    f_->window->close();

    f_->start();
    QCOMPARE(f_->window->size(), QSize(1111, 666));
    open();
    QCOMPARE(grid()->fontMetrics().height(), zoomed);
    f_->driver.key(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(grid()->fontMetrics().height(), height);
  }

  void tellsWhetherAnExportSucceeded() {
    QAction* exporting = action("actionExport");
    QVERIFY(!exporting->isEnabled());
    open();
    const tests::GivenFile* given = f_->give(f_->path("甲-人材机.xlsx"));
    grid()->setFocus();
    f_->driver.key(Qt::Key_E, Qt::ControlModifier);  // one of the two that know the key
    QCOMPARE(given->suggested, QStringList(f_->services->paths().documents() + "/人材机.xlsx"));
    QVERIFY(f_->window->statusBar()->currentMessage().contains("甲-人材机.xlsx"));
    QVERIFY(f_->message().isEmpty());

    // The next one starts where the last one went; what cannot be written is told.
    given = f_->give(f_->path("办公楼.qcp/人材机.xlsx"));
    exporting->trigger();
    QCOMPARE(given->suggested, QStringList(f_->path("人材机.xlsx")));
    QVERIFY2(f_->message().contains("办公楼.qcp"), qPrintable(f_->message()));
    f_->channel->clear();
    f_->give(QString());  // cancelled
    exporting->trigger();
    QCOMPARE(f_->message(), QString());
    f_->window->closeProject();
    QVERIFY(!exporting->isEnabled());
  }

  void readingALargeSourceCanBeCancelled() {
    const QString source = f_->path("大.ZBQD");
    QCOMPARE(exchange::SampleGenerator::generate(100000, 5, source), QString());
    const tests::GivenFile* given = f_->give(f_->path("新.qcp"));
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
    QVERIFY(!makeNewProject(source, [&poll] { poll.start(20); }));
    QCOMPARE(cancelled, 1);
    QVERIFY2(given->suggested.isEmpty(), "cancelled only after the reading");
    QVERIFY(!QFile::exists(f_->path("新.qcp")));
    QVERIFY(f_->channel->messages().empty());
  }

  void theAssociationFilterFollowsBookings() {
    open();
    const auto rows = [this] { return grid()->model()->rowCount(); };
    f_->driver.clickCell(grid(), priceCell());
    QVERIFY(f_->inDialog([this] { f_->driver.key(Qt::Key_L, Qt::ControlModifier); },
                         [this](QWidget*) {
                           f_->driver.key(Qt::Key_Space);
                           f_->driver.key(Qt::Key_Return, Qt::ControlModifier);
                         }));
    QCOMPARE(f_->stack().undoText(), QString("关联清单"));
    for (auto* button : f_->window->findChildren<QToolButton*>()) {
      if (button->text() == "已关联") f_->driver.click(button);
    }
    QCOMPARE(rows(), 1);
    auto* status = f_->window->findChild<QLabel*>("ResItem_status");
    QTRY_VERIFY(status->text().startsWith("显示 1 项"));
    f_->driver.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(rows(), 0);
    QTRY_VERIFY(status->text().startsWith("显示 0 项"));
    f_->driver.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(rows(), 1);
    QTRY_VERIFY(status->text().startsWith("显示 1 项"));
  }

  void undoLeadsToWhatChanged_data() {
    const tests::Rows<QString, QString, QString> row;
    row("where it was done", "resources", "resources", "不含税单价（元）");
    row("on another page", "resources", "design-resources", "不含税单价（元）");
    row("bill", "bills", "bills", "名称");
    row("fee", "fees", "fees", "成本费率（%");
  }
  void undoLeadsToWhatChanged() {
    const auto [from, to, title] = tests::fetch<QString, QString, QString>();
    f_->open(from.toUtf8());
    bwidgets::TreeGridView* view = grid();
    // The grid that shows the column, and its cells from top to bottom.
    const auto cells = [&, title = title] {
      QModelIndexList found;
      const QWidget* page = f_->window->pages()->currentWidget();
      for (auto* each : page->findChildren<bwidgets::TreeGridView*>()) {
        for (const int column : each->visibleColumns()) {
          const QString shown = each->model()->headerData(column, Qt::Horizontal).toString();
          if (!each->isVisible() || !found.isEmpty() || !shown.contains(title)) continue;
          view = each;
          view->expandAll();
          QModelIndex at = view->model()->index(0, 0);
          for (; at.isValid(); at = view->indexBelow(at)) found << at.sibling(at.row(), column);
        }
      }
      return found;
    };
    QModelIndexList all = cells();
    const QPersistentModelIndex edited = *std::find_if(
        all.begin(), all.end(), [](auto& cell) { return cell.flags() & Qt::ItemIsEditable; });
    const QString before = edited.data().toString();
    f_->driver.clickCell(view, edited);
    f_->driver.type("7");
    f_->driver.key(Qt::Key_Return);
    QTRY_COMPARE(edited.data().toDouble(), 7.0);
    QVERIFY(f_->window->pages()->setCurrentPage(to));
    for (const bool undone : {true, false}) {
      all = cells();
      f_->driver.clickCell(view, all.last());
      f_->driver.key(undone ? Qt::Key_Z : Qt::Key_Y, Qt::ControlModifier);
      QCOMPARE(edited.data().toString() == before, undone);
      QCOMPARE(view->currentIndex().data(), edited.data());
      QVERIFY(view->viewport()->rect().contains(view->visualRect(view->currentIndex()).center()));
      QCOMPARE(f_->window->statusBar()->currentMessage(), QString());
    }
    QVERIFY(f_->window->pages()->setCurrentPage("summary"));
    f_->driver.key(Qt::Key_Z, Qt::ControlModifier);
    QVERIFY(f_->window->statusBar()->currentMessage().startsWith("已撤销"));
  }

 private:
  void open() { f_->open("resources"); }
  /// Fills and confirms the dialog for a new project, `before` at last; whether it then closed.
  bool makeNewProject(const QString& source, const std::function<void()>& before) {
    bool closed = false;
    f_->inDialog([this] { f_->driver.key(Qt::Key_N, Qt::ControlModifier); },
                 [&](QWidget* dialog) {
                   f_->driver.click(dialog->findChild<QLineEdit*>("path"));
                   f_->driver.type(source);
                   f_->driver.click(dialog->findChild<QLineEdit*>("name"));
                   f_->driver.type("新工程");
                   before();
                   f_->driver.key(Qt::Key_Return);
                   closed = !dialog->isVisible();
                 });
    return closed;
  }

  QAction* action(const char* name) const { return f_->window->findChild<QAction*>(name); }
  bwidgets::TreeGridView* grid() const {
    return f_->window->pages()->currentWidget()->findChild<bwidgets::TreeGridView*>();
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
    f_->driver.clickCell(grid(), priceCell());
    f_->driver.edit(text);
  }

  double price() const { return grid()->model()->data(priceCell(), Qt::EditRole).toDouble(); }

  std::unique_ptr<tests::WindowFixture> f_;
};

QTEST_MAIN(MainWindowTest)
#include "tst_main_window.moc"
