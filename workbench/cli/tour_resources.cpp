#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>
#include <QUndoStack>
#include <algorithm>

#include "framework/des_filter_view.h"
#include "host/base/pinyin.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "workbench/cli/sheet_check.h"
#include "workbench/cli/tour.h"
#include "workbench/controllers/open_project.h"
#include "workbench/services/channels.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"

namespace cli {

namespace keys = domain::keys;

void Tour::resourceItems() {
  driver_.key(Qt::Key_W, Qt::ControlModifier);
  auto* recent = find<QListWidget>("recentList");
  require(window_->session() == nullptr && recent->count() == 2, "最近的工程没有列出");
  driver_.click(recent->viewport(), recent->visualItemRect(recent->item(1)).center());
  driver_.key(Qt::Key_Return);
  require(window_->session() != nullptr && window_->session()->path() == project_,
          "没有从最近的工程打开");
  require(!items(0).isEmpty(), "没有人材机");
  const QString totals = find<QLabel>("totalsText")->text();
  require(totals.contains(window_->session()->totals().includingTax), "状态栏没有合计");
  picture("人材机");
}

void Tour::flagFilter() {
  const int all = items(0).size();
  const QModelIndexList before = items(0);
  const auto owned = std::count_if(before.begin(), before.end(), [this](const QModelIndex& index) {
    return flag(element(index), keys::BRIIsProvidedByJia);
  });
  clickAction("甲供");
  const QModelIndexList shown = items(0);
  require(shown.size() == owned, "甲供过滤的行数不对");
  for (const QModelIndex& index : shown) {
    require(flag(element(index), keys::BRIIsProvidedByJia), "显示了不是甲供的人材机");
  }
  picture("标志过滤");
  clickAction("全部");
  require(items(0).size() == all, "取消标志过滤后行数不对");
}

void Tour::associationFilter() {
  const QModelIndexList before = items(0);
  const auto associated =
      std::count_if(before.begin(), before.end(), [this](const QModelIndex& index) {
        return text(element(index), keys::BRIAssociation) == "√";
      });
  clickAction("未关联");
  require(items(0).size() == before.size() - associated, "未关联过滤的行数不对");
  picture("关联过滤");
  clickAction("已关联");
  require(items(0).size() == associated, "已关联过滤的行数不对");
  for (QToolButton* button : window_->findChildren<QToolButton*>()) {
    if (button->isVisible() && button->text() == "全部") driver_.click(button);
  }
  require(items(0).size() == before.size(), "取消关联过滤后行数不对");
}

void Tour::conditionFilter() {
  const QModelIndexList before = items(0);
  const auto holding = [&](const QString& keyword) {
    return std::count_if(before.begin(), before.end(), [&](const QModelIndex& index) {
      return text(element(index), keys::BRIName).contains(keyword);
    });
  };
  const QString keyword =
      holding("钢") > 0 ? QString("钢") : text(element(before.last()), keys::BRIName).left(1);
  const auto wanted = holding(keyword);
  clickAction("条件过滤");
  auto* panel =
      window_->pages()->currentWidget()->findChild<gui::qce::destructors::DesFilterView*>();
  require(panel != nullptr && panel->isVisible(), "没有条件面板");
  QLineEdit* name = nullptr;
  for (QLineEdit* box : panel->findChildren<QLineEdit*>()) {
    box->clear();
    driver_.click(box);
    driver_.type(keyword);
    if (QString::fromStdString(panel->getName()) == keyword) name = box;
    if (name != nullptr) break;
    box->clear();
  }
  require(name != nullptr, "名称框没有接受输入");
  driver_.key(Qt::Key_Return);
  const QModelIndexList shown = items(0);
  require(shown.size() == wanted, "条件过滤的行数不对");
  for (const QModelIndex& index : shown) {
    require(text(element(index), keys::BRIName).contains(keyword), "显示了名称不含关键字的人材机");
  }
  picture("条件过滤");
  driver_.click(panel->cancelButton());
  require(items(0).size() == before.size(), "取消条件过滤后行数不对");
  clickAction("条件过滤");
  require(!panel->isVisible(), "条件面板没有收起");
}

void Tour::search() {
  const auto initialsOf = [](const QString& name) {
    return QString::fromStdString(base::PinyinInitials(name.toStdString()));
  };
  const QModelIndexList all = items(0);
  QString initials = initialsOf(text(element(all.last()), keys::BRIName));
  for (const QModelIndex& index : all) {
    if (initialsOf(text(element(index), keys::BRIName)).contains("lwg")) initials = "lwg";
  }
  driver_.click(grid()->viewport(), QPoint(grid()->viewport()->width() - 20, 60));
  driver_.key(Qt::Key_F, Qt::ControlModifier);
  driver_.type(initials);
  driver_.key(Qt::Key_Return);
  const QString found = text(element(grid()->currentIndex()), keys::BRIName);
  require(initialsOf(found).contains(initials), "“" + initials + "”找到的是“" + found + "”");
  picture("查找");
  driver_.key(Qt::Key_Escape);
}

void Tour::sort() {
  const int amount = column(keys::BRIAmount);
  QHeaderView* header = grid()->header();
  grid()->scrollTo(items(amount).first());
  driver_.click(header->viewport(),
                QPoint(header->sectionViewportPosition(amount) + header->sectionSize(amount) / 2,
                       header->height() - 6));
  Driver::wait(400);
  const QModelIndexList shown = items(amount);
  const auto sorted = [&](bool ascending) {
    for (int i = 1; i < shown.size(); ++i) {
      if (shown[i].parent() != shown[i - 1].parent()) continue;
      const double a = number(element(shown[i - 1]), keys::BRIAmount);
      const double b = number(element(shown[i]), keys::BRIAmount);
      if (ascending ? a > b : a < b) return false;
    }
    return true;
  };
  require(sorted(true) || sorted(false), "数量没有排序");
  picture("按数量排序");
}

void Tour::editPrice() {
  const int price = column(keys::BRIExcludedTaxFee);
  const QModelIndex cell = items(price).value(2);
  require(cell.isValid(), "人材机太少");
  editedItem_ = element(cell)->id();
  const QString totalBefore = window_->session()->totals().excludingTax;
  const double before = number(element(cell), keys::BRIExcludedTaxFee);
  editedPrice_ = before + 12.34;
  driver_.clickCell(grid(), cell);
  driver_.key(Qt::Key_F2);
  driver_.retype(QString::number(editedPrice_, 'f', 2));
  picture("修改单价");
  driver_.key(Qt::Key_Return);
  editedPrice_ = QString::number(editedPrice_, 'f', 2).toDouble();
  const QModelIndexList after = items(price);
  const auto edited = std::find_if(after.begin(), after.end(), [this](const QModelIndex& index) {
    return element(index)->id() == editedItem_;
  });
  require(
      edited != after.end() && number(element(*edited), keys::BRIExcludedTaxFee) == editedPrice_,
      "单价没有改成");
  require(window_->session()->totals().excludingTax != totalBefore, "合计没有随单价改变");
  require(Driver::waitUntil([this] {
            return find<QLabel>("totalsText")
                ->text()
                .contains(window_->session()->totals().excludingTax);
          }),
          "状态栏的合计没有更新");
  require(window_->session()->undoStack().canUndo(), "修改不能撤销");
}

void Tour::batchPrice() {
  const int price = column(keys::BRIExcludedTaxFee);
  const QModelIndexList cells = items(price).mid(4, 3);
  require(cells.size() == 3, "人材机太少");
  QList<proxy::Element*> chosen;
  for (const QModelIndex& cell : cells) chosen << element(cell);
  const int steps = window_->session()->undoStack().index();
  driver_.clickCell(grid(), cells.first());
  driver_.clickCell(grid(), cells.last(), Qt::ShiftModifier);
  const bool came = driver_.withPopup([this] { driver_.key(Qt::Key_B, Qt::ControlModifier); },
                                      [this](QWidget* dialog) {
                                        driver_.retype("88.66");
                                        picture("批量设置单价", dialog);
                                        driver_.key(Qt::Key_Return);
                                        if (dialog->isVisible())
                                          static_cast<QDialog*>(dialog)->reject();
                                      });
  require(came, "Ctrl+B 没有打开对话框");
  for (proxy::Element* item : chosen) {
    require(number(item, keys::BRIExcludedTaxFee) == 88.66, "批量单价没有写入");
  }
  require(window_->session()->undoStack().index() == steps + 1, "批量设置不是一个撤销步骤");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(number(chosen.first(), keys::BRIExcludedTaxFee) != 88.66, "批量设置没有撤销");
}

void Tour::annotation() {
  const QModelIndex cell = items(column(keys::BRIName)).value(1);
  proxy::Element* item = element(cell);
  annotatedItem_ = item->id();
  driver_.clickCell(grid(), items(column(keys::BRIExcludedTaxFee)).value(1));
  const bool came = driver_.withPopup([this] { driver_.key(Qt::Key_F2, Qt::ShiftModifier); },
                                      [this](QWidget* dialog) {
                                        driver_.type("价格待供应商确认");
                                        picture("编辑批注", dialog);
                                        driver_.key(Qt::Key_Return, Qt::ControlModifier);
                                        if (dialog->isVisible())
                                          static_cast<QDialog*>(dialog)->reject();
                                      });
  require(came, "Shift+F2 没有打开批注");
  std::string comment;
  window_->session()->project().resItemOperator().getComment(item, comment);
  require(QString::fromStdString(comment).contains("价格待供应商确认"), "批注没有写入");
  picture("批注");
}

void Tour::columns() {
  const auto choose = [this](bool take) {
    QWidget* header = grid()->header()->viewport();
    const QPoint at(40, header->height() - 10);
    const bool came = driver_.withPopup(
        [&] {
          QContextMenuEvent event(QContextMenuEvent::Mouse, at, header->mapToGlobal(at));
          QApplication::sendEvent(header, &event);
        },
        [&](QWidget* menu) {
          driver_.click(
              find<QCheckBox>("column_" + QString::fromStdString(keys::BRITaxRate), menu));
          if (take) picture("列设置", menu);
          driver_.key(Qt::Key_Escape);
        });
    require(came, "没有打开列设置");
  };
  const QAbstractItemModel& rows = *grid()->model();
  const auto rate = [&rows] {
    return dynamic_cast<const gui::ViewModel&>(rows).getColumnIndex(keys::BRITaxRate);
  };
  const int all = rows.columnCount();
  const int before = rate();
  choose(true);
  require(rows.columnCount() == all - 1 && rate() < 0, "没有隐藏税率列");
  choose(false);
  require(rows.columnCount() == all && rate() == before, "没有重新显示税率列");
}

void Tour::undoAndRedo() {
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  proxy::Element* item = nullptr;
  for (const QModelIndex& index : items(0)) {
    if (element(index)->id() == annotatedItem_) item = element(index);
  }
  require(item != nullptr, "找不到加了批注的人材机");
  auto& op = window_->session()->project().resItemOperator();
  std::string comment;
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  op.getComment(item, comment);
  require(stack.index() == steps - 1 && comment.find("供应商") == std::string::npos,
          "批注没有撤销");
  picture("撤销之后");
  driver_.key(Qt::Key_Y, Qt::ControlModifier);
  op.getComment(item, comment);
  require(stack.index() == steps && comment.find("供应商") != std::string::npos, "批注没有恢复");
}

void Tour::subProject() {
  const int all = items(0).size();
  auto* box = find<QComboBox>("ResItem_subProject");
  require(box->count() > 1, "没有可选的范围");
  driver_.withPopup([&] { driver_.click(box); },
                    [this](QWidget*) {
                      driver_.key(Qt::Key_End);
                      driver_.key(Qt::Key_Return);
                    });
  require(box->currentIndex() == box->count() - 1, "没有选中范围");
  const int some = items(0).size();
  require(some > 0 && (some < all || box->count() == 2), "范围没有缩小");
  picture("按范围显示");
  driver_.withPopup([&] { driver_.click(box); },
                    [this](QWidget*) {
                      driver_.key(Qt::Key_Home);
                      driver_.key(Qt::Key_Return);
                    });
  require(items(0).size() == all, "没有回到整个项目");
}

void Tour::exportGrid() {
  const auto& grid = dynamic_cast<const bwidgets::TreeGridView&>(*this->grid());
  const exchange::ReadSheet sheet = exported("人材机", grid);
  require(sheet.name == "人材机", "工作表的名称不对");
  // All items are shown, so their total is that of the project.
  QStringList totals;
  for (int i = 0; i < static_cast<int>(grid.visibleColumns().size()); ++i) {
    totals << shownText(sheet.cell(sheet.rowCount() - 1, i));
  }
  // The status bar groups digits, the columns do not.
  shell::Session::Totals sums = window_->session()->totals();
  require(totals.contains("合计") && totals.contains(sums.excludingTax.remove(',')) &&
              totals.contains(sums.includingTax.remove(',')),
          "合计行不对：" + totals.join(' '));
  picture("导出之后");
}

}  // namespace cli
