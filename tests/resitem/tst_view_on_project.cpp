#include <QComboBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtTest>

#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "resitem/view.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_main.h"
#include "tests/support/tester_proxy.h"
#include "workbench/controllers/new_project_controller.h"
#include "workbench/controllers/open_project.h"

namespace keys = domain::keys;

namespace {

struct Answers : abst::qce::QCENewProjectView {
  void readFilePath(std::string& sourcePath, std::string& projectName) const override {
    sourcePath = QCE_SOURCE_DIR "/samples/办公楼.ZBQD";
    projectName = "办公楼";
  }
  std::string getSelectFileType() const override { return "ZBQD"; }
  std::string getType() const override { return "投标成本测算"; }
  std::string getReportTemplatePath() const override { return {}; }
};

}  // namespace

/// The page over a project file, with its undo and its arithmetic.
class TestViewOnProject : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY(folder_.isValid());
    path_ = folder_.filePath("办公楼.qcp");
    QString created;
    controllers::NewProjectController maker([this](const QString&) { return path_; },
                                            [&created](const QString& path) { created = path; });
    QVERIFY(maker.createProject(Answers()));
    QCOMPARE(created, path_);
  }

  void init() {
    store::Failure failure;
    project_ = controllers::OpenProject::open(path_, failure);
    QVERIFY(project_ != nullptr);
    app::Services services;
    services.undo = &project_->undo();
    services.channel = services.qceChannel = &channel_;
    before_ = app::InstallServices(services);
    channel_.clear();

    model_ = std::make_unique<gui::qce::QCEResItemModelImpl>();
    filter_ = std::make_unique<gui::qce::QCEResItemFilterModelImpl>(model_.get());
    tests::attachTester(model_.get());
    tests::attachTester(filter_.get());
    model_->setDisplayTable(&project_->resItemTable());
    model_->setOperator(&project_->resItemOperator());
    project_->resItemController().setModel(model_.get());
    page_ = std::make_unique<gui::qce::QCEResItemViewImpl>();
    page_->setController(&project_->resItemController());
    page_->setModel(filter_.get());
    page_->resize(1280, 700);
    page_->show();
    page_->activate();
    grid_ = page_->findChild<gui::TreeGridView*>();
    QCoreApplication::processEvents();
  }

  void cleanup() {
    page_.reset();
    project_->resItemController().setModel(nullptr);
    filter_.reset();
    model_.reset();
    app::InstallServices(before_);
    project_.reset();
  }

  void addsItemsOfOnesOwn() {
    auto* first = static_cast<records::ResourceItem*>(selectItems(1).front());
    const std::string before = project_->project().dump();
    const costing::Decimal total = project_->totals().excluded;
    const int items = shownCodes().size();
    QTest::keyClick(grid_, Qt::Key_Insert);
    auto* added = dynamic_cast<records::ResourceItem*>(grid_->currentElement());
    QVERIFY(added != nullptr && added != first);
    auto* edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(edit != nullptr);  // the name is being typed
    edit->selectAll();
    edit->insert("临时用工");
    QTest::keyClick(edit, Qt::Key_Return);
    QCoreApplication::processEvents();  // the editor writes from the event loop
    QCOMPARE(shownCodes().size(), items + 1);
    QCOMPARE(added->name().str(), std::string("临时用工"));
    QVERIFY(added->group() == first->group() && added->account() != nullptr);
    const auto type = [this](proxy::Element* item, const std::string& key, const char* text) {
      return filter_->setData(filter_->makeIndex(item, filter_->getColumnIndex(key)), text);
    };
    QVERIFY(type(added, keys::BRIUnit, "工日"));
    QVERIFY(type(added, keys::BRIAmount, "12.5"));
    QVERIFY(type(added, keys::BRIExcludedTaxFee, "200"));
    QVERIFY(project_->totals().excluded - total == costing::Decimal(2500));
    QVERIFY(!type(added, keys::BRIAmount, "-1"));
    QCOMPARE(channel_.messages().size(), std::size_t(1));
    for (const std::string& key : {keys::BRIUnit, keys::BRIAmount}) {  // those of the bills
      const QModelIndex cell = filter_->makeIndex(first, filter_->getColumnIndex(key));
      QVERIFY(!cell.flags().testFlag(Qt::ItemIsEditable));
      QVERIFY(!type(first, key, "3"));
    }

    grid_->selectElements({first, added});
    QCoreApplication::processEvents();
    QTest::keyClick(grid_, Qt::Key_Delete, Qt::ControlModifier);
    QVERIFY(channel_.messages().back().text.find("没有删除任何人材机") != std::string::npos);
    QCOMPARE(shownCodes().size(), items + 1);
    grid_->selectElements({added});
    QCoreApplication::processEvents();
    QTest::keyClick(grid_, Qt::Key_Delete, Qt::ControlModifier);
    QCOMPARE(shownCodes().size(), items);
    QCOMPARE(project_->totals().excluded.toString(), total.toString());
    while (project_->undo().stack()->canUndo()) project_->undo().stack()->undo();
    QCOMPARE(project_->project().dump(), before);
  }

  void addsTheFirstItem() {
    path_ = folder_.filePath("空.qcp");
    store::Failure failure;
    QVERIFY(store::ProjectFile::create(path_, nullptr, {"空", "投标成本测算", {}}, failure));
    cleanup();
    init();
    path_ = folder_.filePath("办公楼.qcp");
    QTimer::singleShot(0, [] {
      auto* dialog = QApplication::activeModalWidget();
      QTest::keyClick(dialog->findChild<QComboBox*>(), Qt::Key_Down);
      QTest::keyClick(dialog, Qt::Key_Return);
    });
    grid_->setCurrentIndex({});  // no row says where the item goes
    page_->insertItem();
    auto* added = dynamic_cast<records::ResourceItem*>(grid_->currentElement());
    QVERIFY(added != nullptr);
    QVERIFY(&added->group()->unitWork() == project_->project().unitWorks().at(1));
    QCOMPARE(added->category(), records::Category::Labour);
    QCOMPARE(added->code().str(), std::string("补充人工001"));
  }

 private:
  // The first items from the top, selected.
  std::vector<proxy::Element*> selectItems(int count) {
    std::vector<proxy::Element*> items;
    std::string comment;
    for (QModelIndex at = filter_->index(0, 0); at.isValid(); at = grid_->indexBelow(at)) {
      proxy::Element* element = filter_->getInternalData(at);
      if (static_cast<int>(items.size()) < count && filter_->getComment(element, comment)) {
        items.push_back(element);
      }
    }
    grid_->selectElements(items);
    QCoreApplication::processEvents();
    return items;
  }
  QStringList shownCodes() const {
    QStringList codes;
    const int code = filter_->getColumnIndex(keys::BRICode);
    for (QModelIndex at = filter_->index(0, 0); at.isValid(); at = grid_->indexBelow(at)) {
      codes << at.sibling(at.row(), code).data().toString();
    }
    return codes;
  }

  QTemporaryDir folder_;
  QString path_;
  services::RecordingChannel channel_;
  app::Services before_;
  std::unique_ptr<controllers::OpenProject> project_;
  std::unique_ptr<gui::qce::QCEResItemModelImpl> model_;
  std::unique_ptr<gui::qce::QCEResItemFilterModelImpl> filter_;
  std::unique_ptr<gui::qce::QCEResItemViewImpl> page_;
  gui::TreeGridView* grid_ = nullptr;
};

QCE_WIDGET_TEST_MAIN(TestViewOnProject)
#include "tst_view_on_project.moc"
