#pragma once

#include <QLineEdit>
#include <QScrollBar>
#include <QtTest>

#include "framework/filter_view_model.h"
#include "host/bwidgets/grid_header.h"
#include "host/bwidgets/search_box.h"
#include "host/gui/tree_grid_view.h"
#include "tests/support/recording_services.h"
#include "tests/support/test_elements.h"
#include "tests/support/tester_proxy.h"

namespace tests {

class SampleFilterModel : public abst::BaseModel {
 public:
  using SourceModel = abst::BaseModel;
};

/// Shows the rows whose name contains `wanted`, and what is above them.
class SampleFilter : public gui::TFilterViewModel<SampleFilterModel> {
 public:
  using TFilterViewModel::TFilterViewModel;
  void want(const std::string& name) {
    wanted_ = name;
    invalidateFilter();
  }

 protected:
  bool filterAcceptsRow(proxy::Element* element) const override {
    return static_cast<Node*>(element)->name().find(wanted_) != std::string::npos;
  }
  using TFilterViewModel::filterAcceptsRow;

 private:
  std::string wanted_;
};

class SampleModel : public gui::TViewModel<abst::BaseModel> {
 public:
  /// What a host does that reloads: `change` runs between the two halves of a reset.
  template <class Change>
  void reset(Change change) {
    beginResetModel();
    change();
    endResetModel();
  }
};

/// Resource items in groups, below a filter, in a shown grid of 700 x 320.
///
/// Columns: code, name, unit, amount (three places), price and total (two, thousands separators,
/// total read-only), owner (check box), note. Amount and price stand below the caption 用量单价.
struct SampleGrid {
  explicit SampleGrid(int groups = 3, int itemsPerGroup = 4, bwidgets::TreeGridView* made = nullptr)
      : view(made != nullptr ? made : new gui::TreeGridView), filter(&model) {
    using namespace domain;
    DisplayRow& header = *table.getHeader();
    header.addColumn("code", field(StringField, {}, false, "编码")).width = 120;
    header.addColumn("name", field(StringField, {}, false, "名称")).width = 140;
    header.addColumn("unit", field(StringField, {}, false, "单位")).width = 60;
    header.addColumn("amount", field(FloatingPointField, 3, false, "数量")).width = 100;
    header.addColumn("price", field(FloatingPointField, 2, true, "单价")).width = 110;
    header.addColumn("total", field(FloatingPointField, 2, true, "合价")).width = 130;
    header.addColumn("owner", field(BoolField, {}, false, "甲供")).width = 60;
    header.addColumn("note", field(StringField, {}, false, "备注")).width = 180;
    header.addHeaderGroup("g", "用量单价", {"amount", "price"});
    header.addHeaderGroup("h", "其他", {"owner", "note"});
    op.readOnlyKey = "total";
    op.checkableKey = "owner";
    attachTester(&model);
    attachTester(&filter);
    for (int g = 0; g < groups; ++g) fillGroup(op.tree.add(names[g % 4]), g, itemsPerGroup);
    model.setOperator(&op);
    model.setDisplayTable(&table);
    view->setModel(&filter);
    view->applyDefaultColumnWidths();
    view->applyHeaderSettings();
    view->initSearchBox();
    view->resize(700, 320);
    view->show();
    view->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
  }
  ~SampleGrid() { view.reset(); }

  static void fillGroup(Node* group, int g, int items) {
    group->set("code", group->name());
    for (int i = 0; i < items; ++i) {
      const int n = g * items + i;
      const char* const kinds[] = {"螺纹钢 HRB400", "普通水泥 P.O 42.5", "商品混凝土 C30", "中砂"};
      group->add(kinds[n % 4])
          ->set("code", "CL" + std::to_string(1000 + n))
          ->set("name", std::string(kinds[n % 4]))
          ->set("unit", std::string(n % 2 != 0 ? "m³" : "t"))
          ->set("amount", 12.5 + n)
          ->set("price", 3850.0 - n)
          ->set("total", (12.5 + n) * (3850.0 - n))
          ->set("owner", domain::CheckStateRole, n % 3 == 0)
          ->set("note", std::string("备注" + std::to_string(n)));
    }
  }

  /// "0.2:name": the row path and the column's key.
  QModelIndex cell(const QString& path) const {
    const QString rows = path.section(':', 0, 0);
    const int column = filter.getColumnIndex(path.section(':', 1).toStdString());
    QModelIndex at;
    const QStringList steps = rows.split('.');
    for (int i = 0; i < steps.size(); ++i) {
      at = filter.index(steps.at(i).toInt(), i + 1 == steps.size() ? column : 0, at);
    }
    return at;
  }
  QString text(const QString& path) const { return cell(path).data().toString(); }
  QString pathOf(const QModelIndex& index) const {
    if (!index.isValid()) return QStringLiteral("none");
    QStringList rows;
    for (QModelIndex at = index; at.isValid(); at = at.parent()) {
      rows.prepend(QString::number(at.row()));
    }
    return rows.join('.') + ':' + QString::fromStdString(filter.getColumnName(index.column()));
  }
  /// The selected cells' paths, by rows.
  QString selected() const {
    QStringList paths;
    for (const QModelIndex& cell : view->selectedCells()) paths << pathOf(cell);
    return paths.join(' ');
  }
  QString current() const { return pathOf(view->currentIndex()); }
  Node* node(int group, int item) const { return op.tree.node(group)->node(item); }

  // Not the view's own setCurrentIndex, which looks at the modifiers of the last key press.
  void setCurrent(const QString& path) {
    view->selectionModel()->setCurrentIndex(cell(path), QItemSelectionModel::ClearAndSelect);
  }
  void select(const QString& from, const QString& to) {
    const QModelIndex a = cell(from);
    const QModelIndex b = cell(to);
    setCurrent(from);
    view->selectionModel()->select(QItemSelection(a, b), QItemSelectionModel::ClearAndSelect);
  }
  void click(const QString& path, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    view->scrollTo(cell(path));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                      view->visualRect(cell(path)).center());
  }
  void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(view.get(), static_cast<Qt::Key>(key), modifiers);
  }
  /// Opens the editor of a cell, whatever is folded, and types into it.
  void edit(const QString& path, const QString& typed = {}) {
    view->expandAll();
    setCurrent(path);
    key(Qt::Key_F2);
    QVERIFY(editor() != nullptr);
    QTest::keyClicks(editor(), typed);
  }
  QLineEdit* editor() const {
    for (QLineEdit* line : view->viewport()->findChildren<QLineEdit*>()) {
      if (line->isVisible()) return line;
    }
    return nullptr;
  }
  void scrollTo(int x) {
    view->horizontalScrollBar()->setValue(x);
    QCOMPARE(view->horizontalScrollBar()->value(), x);
  }
  /// The lines of the one message that has been shown.
  QString message() const {
    const auto& shown = services.channel.messages();
    return shown.size() == 1 ? QString::fromStdString(shown.front().text)
                             : QStringLiteral("%1 messages").arg(shown.size());
  }
  static constexpr const char* names[] = {"人工", "材料", "机械", "设备"};

  RecordingServices services;
  NodeOperator op;
  domain::DisplayTable table;
  SampleModel model;
  std::unique_ptr<bwidgets::TreeGridView> view;
  SampleFilter filter;
};

/// With every group unfolded.
struct OpenGrid : SampleGrid {
  template <class... Made>
  explicit OpenGrid(Made... made) : SampleGrid(made...) {
    view->expandAll();
  }
};

}  // namespace tests
