#include "host/bwidgets/grid_sheet.h"

#include "host/bwidgets/table_view.h"
#include "tests/support/sample_grid.h"
#include "tests/support/test_main.h"

using tests::OpenGrid;
using tests::SampleGrid;

namespace {

/// A cell as one short text: its kind and its value.
QString text(const app::SheetCell& cell) {
  if (const auto* flag = std::get_if<bool>(&cell.value)) return *flag ? "[x]" : "[ ]";
  if (const auto* number = std::get_if<double>(&cell.value)) {
    return QString("%1/%2").arg(*number, 0, 'g', 17).arg(cell.places);
  }
  const auto* held = std::get_if<std::string>(&cell.value);
  return held != nullptr ? "'" + QString::fromStdString(*held) : QString("-");
}

QString line(const app::SheetRow& row) {
  QStringList texts;
  for (const app::SheetCell& cell : row.cells) texts << text(cell);
  return QString::number(row.level) + (row.collapsed ? "+ " : " ") + texts.join(" ");
}

QString columns(const app::Sheet& sheet) {
  QStringList texts;
  for (const app::SheetColumn& column : sheet.columns) {
    texts << QString("%1=%2/%3%4")
                 .arg(QString::fromStdString(column.key), QString::fromStdString(column.title))
                 .arg(column.width)
                 .arg(column.thousands ? "," : "");
  }
  return texts.join(" ");
}

QString groups(const app::Sheet& sheet) {
  QStringList texts;
  for (const app::SheetGroup& group : sheet.groups) {
    texts << QString("%1:%2-%3")
                 .arg(QString::fromStdString(group.caption))
                 .arg(group.first)
                 .arg(group.last);
  }
  return texts.join(" ");
}

}  // namespace

class GridSheetTest : public QObject {
  Q_OBJECT

 private slots:
  void columnsStandAsTheyAreShown() {
    SampleGrid grid(1, 1);
    grid.view->setColumnHidden(2, true);     // unit
    grid.view->setColumnHidden(0, true);     // code
    grid.view->header()->moveSection(5, 1);  // total before name
    grid.view->header()->resizeSection(1, 260);
    grid.view->setFrozenColumnCount(3);  // code, total, name: two are shown
    const app::Sheet sheet = bwidgets::makeSheet(*grid.view, "甲");
    QCOMPARE(sheet.name, std::string("甲"));
    QCOMPARE(columns(sheet),
             QString("total=合价/130, name=名称/260 amount=数量/100 price=单价/110, owner=甲供/60 "
                     "note=备注/180"));
    QCOMPARE(groups(sheet), QString("用量单价:2-3 其他:4-5"));
    QCOMPARE(sheet.frozenColumns, 2);
  }

  void frozenColumnsPartAGroupAndNarrownessDoesNotUnfreeze() {
    SampleGrid grid(1, 1);
    grid.view->setFrozenColumnCount(4);
    grid.view->resize(200, 300);
    grid.view->setZoom(200);
    const app::Sheet sheet = bwidgets::makeSheet(*grid.view, "甲");
    QCOMPARE(sheet.frozenColumns, 4);
    QCOMPARE(sheet.columns[1].width, 140);
    QCOMPARE(groups(sheet), QString("用量单价:3-3 用量单价:4-4 其他:6-7"));
  }

  void rowsAreThoseOfTheFilterWithTheirLevels() {
    OpenGrid grid(3, 4);
    grid.view->collapse(grid.cell("1:code"));
    grid.filter.want("水泥");
    grid.view->setRowHidden(0, grid.cell("2:code"), true);
    const app::Sheet sheet = bwidgets::makeSheet(*grid.view, "");
    QStringList lines;
    for (const app::SheetRow& row : sheet.rows) {
      lines << QString::number(row.level) + (row.collapsed ? "+" : "") + text(row.cells[0]);
    }
    QCOMPARE(lines.join(" "), QString("0'人工 1'CL1001 0+'材料 1'CL1005 0'机械"));
    QCOMPARE(sheet.treeColumn, 0);
  }

  void aCellIsWhatItShows() {
    SampleGrid grid(1, 2);
    tests::Node* item = grid.node(0, 0);
    item->set("code", std::string("=1+1"))
        ->set("name", std::string("0012"))
        ->set("unit", std::string("t\n吨"))
        ->set("amount", 1.0005)  // shown as 1.001
        ->set("price", -1234567.005)
        ->set("total", 0.1 + 0.2)
        ->set("note", std::string());
    tests::Node* other = grid.node(0, 1);
    other->set("name", std::string("砂"))
        ->set("amount", std::string("暂无"))
        ->set("price", domain::EditRole, std::string("3*4"))
        ->set("price", domain::DisplayRole, std::string("1,200.50"))
        ->set("total", std::monostate());
    grid.model.reset([] {});
    grid.table.getHeader()->column("total")->zeroShowsEmpty = true;
    const app::Sheet sheet = bwidgets::makeSheet(*grid.view, "");
    QCOMPARE(line(sheet.rows[1]),
             QString("1 '=1+1 '0012 't\n吨 1.0004999999999999/3 -1234567.0049999999/2 "
                     "0.30000000000000004/2 [x] -"));
    // What the model shows for want of a number is one; a text is none, wherever it stands.
    QCOMPARE(line(sheet.rows[2]).section(' ', 4, 8), QString("'暂无 1200.5/2 - [ ]"));
    // A grouping row has no check boxes.
    QCOMPARE(text(sheet.rows[0].cells[6]), QString("-"));
  }

  void looksComeFromTheModel() {
    SampleGrid grid(1, 1);
    grid.node(0, 0)
        ->set("name", domain::BackgroundRole, base::Color{1, 2, 3})
        ->set("name", domain::ForegroundRole, base::Color{4, 5, 6})
        ->set("name", domain::FontRole, base::Font{true, {}})
        ->set("name", domain::TextAlignmentRole, static_cast<int>(Qt::AlignHCenter));
    const app::Sheet sheet = bwidgets::makeSheet(*grid.view, "");
    const app::SheetCell& marked = sheet.rows[1].cells[1];
    QVERIFY(marked.bold);
    QVERIFY((marked.background == base::Color{1, 2, 3}));
    QVERIFY((marked.foreground == base::Color{4, 5, 6}));
    QCOMPARE(marked.alignment, app::SheetAlignment::Center);
    const app::SheetCell& plain = sheet.rows[1].cells[0];
    QVERIFY(!plain.bold && !plain.background && !plain.foreground);
    QCOMPARE(plain.alignment, app::SheetAlignment::Automatic);
  }

  void aFlatTableOfAnyModel() {
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({"名称", "数量"});
    model.setData(model.index(0, 0), "砂");
    model.setData(model.index(0, 1), 2.5);
    model.setData(model.index(1, 0), Qt::Checked, Qt::CheckStateRole);
    model.setData(model.index(1, 1), QBrush(Qt::red), Qt::BackgroundRole);
    bwidgets::TableView view;
    view.setModel(&model);
    const app::Sheet sheet = bwidgets::makeSheet(view, "表");
    QCOMPARE(line(sheet.rows[0]), QString("0 '砂 2.5/1"));
    QCOMPARE(line(sheet.rows[1]), QString("0 [x] -"));
    QVERIFY((sheet.rows[1].cells[1].background == base::Color{255, 0, 0}));
    QVERIFY(sheet.groups.empty());
    QCOMPARE(sheet.columns[1].title, std::string("数量"));

    QVERIFY(bwidgets::makeSheet(bwidgets::TableView(), "空").columns.empty());
  }
};

QCE_WIDGET_TEST_MAIN(GridSheetTest)
#include "tst_grid_sheet.moc"
