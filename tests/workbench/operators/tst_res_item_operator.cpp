#include <QColor>
#include <QFont>

#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_marks.h"
#include "resitem/model.h"
#include "tests/support/rows.h"
#include "tests/support/tester_proxy.h"
#include "tests/workbench/project_fixture.h"

namespace keys = domain::keys;
using records::Category;
using records::ResourceItem;

namespace {

/// The project behind the page's own item model, as the window binds them.
class Bound {
 public:
  Bound() : opened(*fixture.open()) {
    model.setDisplayTable(&opened.resItemTable());
    tests::attachTester(&model);
    model.setOperator(&opened.resItemOperator());
    opened.resItemController().setModel(&model);
    opened.resItemController().setElementChanged([this](proxy::Element* element) {
      changed.push_back(element);
      emit model.dataChanged(model.makeIndex(element, 0),
                             model.makeIndex(element, model.columnCount() - 1));
    });
  }
  ~Bound() {
    opened.resItemController().setModel(nullptr);
    opened.resItemController().setElementChanged({});
    model.setOperator(nullptr);
  }

  QModelIndex cell(ResourceItem& item, const std::string& key) {
    return model.makeIndex(&item, model.getColumnIndex(key));
  }
  QString text(proxy::Element& element, const std::string& key) {
    return model.makeIndex(&element, model.getColumnIndex(key)).data().toString();
  }
  bool type(ResourceItem& item, const std::string& key, const QVariant& value) {
    return model.setData(cell(item, key), value, Qt::EditRole);
  }
  tests::ProjectFixture fixture;
  controllers::OpenProject& opened;
  gui::qce::QCEResItemModelImpl model;
  std::vector<proxy::Element*> changed;
};

}  // namespace

class ResItemOperatorTest : public QObject {
  Q_OBJECT

 private slots:
  void groupsBySubProjectAndCategory() {
    Bound bound;
    QCOMPARE(bound.model.rowCount(), int(bound.opened.project().unitWorks().size()));
    const QModelIndex subProject = bound.model.index(0, 0);
    const QModelIndex category = bound.model.index(0, 0, subProject);
    auto* row = bound.model.getInternalData(category);
    QCOMPARE(bound.text(*row, keys::BRIName), QStringLiteral("人工"));
    // No column groups its digits: a text with separators would sort as nothing.
    for (int i = 0; i < bound.model.columnCount(); ++i) {
      QVERIFY(!bound.model.makeIndex(row, i).data().toString().contains(','));
    }
    // A grouping row shows money, and neither a quantity nor a price.
    for (const std::string& key : {keys::BRIAmount, keys::BRIExcludedTaxFee, keys::BRITaxRate}) {
      QCOMPARE(bound.text(*row, key), QString());
    }
    // The shown lines add up to the shown total.
    qlonglong cents = 0;
    const auto centsOf = [&](proxy::Element& element) {
      return bound.text(element, keys::BRIIncludedTaxTotalCost).remove('.').toLongLong();
    };
    for (int i = 0; i < row->childCount(); ++i) cents += centsOf(*row->child(i));
    QVERIFY(row->childCount() > 1);
    QCOMPARE(cents, centsOf(*row));
  }

  void narrowsToOneSubProject() {
    Bound bound;
    const auto subProjects = bound.opened.resItemController().getSubProjects();
    bound.model.setSubProject(subProjects.at(1).second);
    QCOMPARE(bound.model.rowCount(), 1);
    QCOMPARE(bound.text(*bound.model.getInternalData(bound.model.index(0, 0)), keys::BRIName),
             QString::fromStdString(subProjects[1].first));
    // Edits elsewhere do not reach this view, moves neither.
    ResourceItem& hidden = bound.fixture.item(0, Category::Material, 1);
    {
      const app::ScopedUndo undo("");
      bound.opened.project().set(hidden, records::ItemField::Provisional, !hidden.provisional());
    }
    QVERIFY(bound.changed.empty());
    QVERIFY(bound.opened.resItemController().moveUp(&hidden));
    bound.model.setSubProject(nullptr);
    QCOMPARE(bound.model.rowCount(), int(subProjects.size()));
    QCOMPARE(hidden.row(), 0);
  }

  void editsReachEverythingThatFollows() {
    Bound bound;
    ResourceItem& item = bound.fixture.item(0, Category::Material, 0);
    const QString total = bound.text(*item.parent(), keys::BRIExcludedTaxTotalCost);
    QSignalSpy spy(&bound.model, &QAbstractItemModel::dataChanged);
    QVERIFY(bound.type(item, keys::BRIExcludedTaxFee, "1234.565"));
    QCOMPARE(bound.text(item, keys::BRIExcludedTaxFee), QStringLiteral("1234.57"));
    QVERIFY(bound.text(*item.parent(), keys::BRIExcludedTaxTotalCost) != total);
    const std::vector<proxy::Element*> expected = {&item, item.parent(), item.parent()->parent()};
    QVERIFY(bound.changed == expected);

    bound.changed.clear();
    bound.opened.undo().stack()->undo();
    QCOMPARE(bound.text(*item.parent(), keys::BRIExcludedTaxTotalCost), total);
    QVERIFY(bound.changed == expected);
    QVERIFY(bound.type(item, keys::BRIExcludedTaxFee, ""));  // cleared: not priced yet
    QCOMPARE(bound.text(item, keys::BRIExcludedTaxTotalCost), QStringLiteral("0.00"));
    const auto& account = *bound.opened.project().allAccounts().back();
    for (const std::string& text : {account.code, account.label}) {
      QVERIFY(bound.type(item, keys::CostAccount, QString::fromStdString(text)));
      QCOMPARE(bound.text(item, keys::CostAccount), QString::fromStdString(account.label));
      QVERIFY(bound.type(item, keys::CostAccount, ""));
      QVERIFY(item.account() == nullptr);
    }
    QVERIFY(bound.fixture.channel.messages().empty());
  }

  void refusesWithAMessage_data() {
    const tests::Rows<std::string, QString, QString> row;
    row("negative price", keys::BRIExcludedTaxFee, "-1", "0 到 1,000,000,000");
    row("huge price", keys::BRIExcludedTaxFee, "1000000000.01", "0 到 1,000,000,000");
    row("too exact a price", keys::BRIExcludedTaxFee, "1.1234567", "最多 6 位小数");
    row("infinite price", keys::BRIExcludedTaxFee, "inf", "应为数字");
    row("rate above all", keys::BRITaxRate, "100.5", "0 到 100");
    row("unknown account", keys::CostAccount, "没有的科目", "没有成本科目“没有的科目”");
    row("no code", keys::BRICode, "  ", "不能为空");
    row("no name", keys::BRIName, "", "不能为空");
    row("endless name", keys::BRIName, QString(5000, QChar(0x94a2)), "过长");
  }
  void refusesWithAMessage() {
    const auto [key, typed, words] = tests::fetch<std::string, QString, QString>();
    Bound bound;
    ResourceItem& item = bound.fixture.item(0, Category::Material, 0);
    const std::string before = bound.opened.project().dump();
    QVERIFY(!bound.type(item, key, typed));
    QVERIFY2(bound.fixture.message().contains(words), qPrintable(bound.fixture.message()));
    QVERIFY(bound.opened.project().dump() == before);
    QVERIFY(!bound.opened.undo().stack()->canUndo());
  }

  void tellsItemsApart() {
    Bound bound;
    ResourceItem* plain = nullptr;
    for (ResourceItem* item : bound.fixture.items()) {
      if (!item->ownerSupplied() && !item->provisional() && item->annotation().empty())
        plain = item;
    }
    QVERIFY(plain != nullptr);
    const auto color = [&](const std::string& key, int role) {
      return bound.cell(*plain, key).data(role).value<QColor>();
    };
    const auto same = [](const QColor& shown, const base::Color& mark) {
      return shown == QColor(mark.r, mark.g, mark.b);
    };
    QVERIFY(!color(keys::BRICode, Qt::BackgroundRole).isValid());
    for (const std::string& key : {keys::BRIIsProvidedByJia, keys::BRIProvisional}) {
      QVERIFY(bound.model.setData(bound.cell(*plain, key), true, Qt::CheckStateRole));
      QCOMPARE(bound.cell(*plain, key).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
    }
    QVERIFY(bound.model.setComment(plain, "询价中"));
    QVERIFY(same(color(keys::BRICode, Qt::BackgroundRole), domain::qce::marks::ProvidedByJia));
    QVERIFY(same(color(keys::BRICode, Qt::ForegroundRole), domain::qce::marks::Provisional));
    QVERIFY(same(color(keys::BRIName, Qt::BackgroundRole), domain::qce::marks::Annotated));
    QCOMPARE(bound.cell(*plain, keys::BRIUnit).data(Qt::ToolTipRole).toString(),
             QStringLiteral("询价中"));
    QVERIFY(bound.model.index(0, 0).data(Qt::FontRole).value<QFont>().bold());
    QVERIFY(bound.model.index(0, 0).data(Qt::BackgroundRole).isValid());
  }

  void onlyInputsCanBeEdited() {
    Bound bound;
    ResourceItem& item = bound.fixture.item(0, Category::Material, 0);
    QStringList editable;
    QStringList checkable;
    for (int column = 0; column < bound.model.columnCount(); ++column) {
      const Qt::ItemFlags flags = bound.model.makeIndex(&item, column).flags();
      const QString title =
          bound.model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
      if (flags & Qt::ItemIsEditable) editable << title;
      if (flags & Qt::ItemIsUserCheckable) checkable << title;
      QVERIFY(!(bound.model.makeIndex(item.parent(), column).flags() &
                (Qt::ItemIsEditable | Qt::ItemIsUserCheckable)));
      QVERIFY(!bound.model.setData(bound.model.makeIndex(item.parent(), column), 1));
    }
    QCOMPARE(editable.join(' '),
             QStringLiteral("成本科目 编码 名称 规格型号 不含税单价（元） 税率（%） 批注"));
    QCOMPARE(checkable.join(' '), QStringLiteral("甲供 暂估 可调价"));
    QVERIFY(!bound.type(item, keys::BRIAmount, 5));
  }

  void movesRowsInsideTheirGroup() {
    Bound bound;
    ResourceItem& item = bound.fixture.item(0, Category::Material, 0);
    controllers::ResItemController& controller = bound.opened.resItemController();
    QVERIFY(!controller.moveUp(&item));
    QVERIFY(!controller.moveUp(item.parent()));
    QVERIFY(!bound.opened.undo().stack()->canUndo());
    const QPersistentModelIndex kept(bound.cell(item, keys::BRIName));
    QSignalSpy moved(&bound.model, &QAbstractItemModel::rowsMoved);
    QVERIFY(controller.moveDown(&item));
    QCOMPARE(moved.size(), 1);
    QCOMPARE(kept.row(), 1);
    QVERIFY(bound.model.getInternalData(kept) == &item);
    bound.opened.undo().stack()->undo();
    QCOMPARE(moved.size(), 2);
    QCOMPARE(kept.row(), 0);
  }

  void undoOfAMoveInASortedViewResets() {
    Bound bound;
    ResourceItem& item = bound.fixture.item(0, Category::Material, 1);
    bound.model.rebuildGroup();
    emit bound.model.layoutAboutToBeChanged();
    bound.opened.resItemOperator().getRoot()->reorder(
        [](proxy::Element* a, proxy::Element* b) { return a->id() > b->id(); });
    emit bound.model.layoutChanged();
    QVERIFY(bound.opened.resItemController().moveUp(&item));
    QSignalSpy reset(&bound.model, &QAbstractItemModel::modelReset);
    bound.opened.undo().stack()->undo();
    QCOMPARE(reset.size(), 1);
    QCOMPARE(item.row(), 1);
  }
};

QTEST_MAIN(ResItemOperatorTest)
#include "tst_res_item_operator.moc"
