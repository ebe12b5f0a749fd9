#include "workbench/cli/tour.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>
#include <set>

#include "framework/des_filter_view.h"
#include "host/base/pinyin.h"
#include "host/bwidgets/table_view.h"
#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "host/gui/view_model.h"
#include "workbench/cli/sheet_check.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/services/install.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"
#include "workbench/shell/summary_view.h"

namespace cli {

namespace keys = domain::keys;

namespace {

constexpr int kWidth = 1440;  // pixels of the pictures
constexpr int kHeight = 860;

/// Stands for the file dialogs: answers the path that it was given.
class GivenFile : public shell::FileChooser {
 public:
  explicit GivenFile(QString path) : path_(std::move(path)) {}
  QString projectToOpen(QWidget*, const QString&) override { return path_; }
  QString projectToWrite(QWidget*, const QString&) override { return path_; }
  QString spreadsheetToWrite(QWidget*, const QString&) override { return path_; }

 private:
  QString path_;
};

void collect(const QAbstractItemModel& model, const QModelIndex& parent, int column,
             QModelIndexList& into) {
  const auto& view = dynamic_cast<const gui::ViewModel&>(model);
  for (int row = 0; row < model.rowCount(parent); ++row) {
    const QModelIndex first = model.index(row, 0, parent);
    if (dynamic_cast<records::ResourceItem*>(view.getInternalData(first)) != nullptr) {
      into << model.index(row, column, parent);
    }
    collect(model, first, column, into);
  }
}

void collectBudget(proxy::Element& node, std::vector<records::BudgetItem*>& into) {
  if (auto* line = dynamic_cast<records::BudgetItem*>(&node)) into.push_back(line);
  for (int row = 0; row < node.childCount(); ++row) collectBudget(*node.child(row), into);
}

}  // namespace

Tour::Tour(const QString& project, const QString& scratch, const QString& pictures)
    : project_(project), scratch_(scratch), out_(pictures) {
  auto channel = std::make_unique<services::RecordingChannel>();
  channel_ = channel.get();
  services_ =
      services::install(std::make_unique<services::PathManager>(scratch), std::move(channel));
  window_ = std::make_unique<shell::MainWindow>(*services_);
}

Tour::~Tour() = default;

void Tour::walk() {
  window_->resize(kWidth, kHeight);
  window_->show();
  window_->activateWindow();
  require(Driver::waitUntil([this] { return window_->isActiveWindow(); }), "窗口没有打开");

  step("欢迎页", &Tour::welcome);
  step("新建工程", &Tour::newProject);
  step("人材机", &Tour::resourceItems);
  step("标志过滤", &Tour::flagFilter);
  step("关联过滤", &Tour::associationFilter);
  step("条件过滤", &Tour::conditionFilter);
  step("查找", &Tour::search);
  step("排序", &Tour::sort);
  step("修改单价", &Tour::editPrice);
  step("批量设置单价", &Tour::batchPrice);
  step("批注", &Tour::annotation);
  step("撤销与恢复", &Tour::undoAndRedo);
  step("归集到成本", &Tour::poolResources);
  step("关联清单", &Tour::associateBills);
  step("清单明细", &Tour::billTerms);
  step("分部分项", &Tour::bills);
  step("范围", &Tour::subProject);
  step("导出", &Tour::exportGrid);
  step("费用汇总", &Tour::feeSummaries);
  step("间接费", &Tour::indirectFees);
  step("缩放", &Tour::zoom);
  step("重新打开", &Tour::reopen);
}

void Tour::step(const QString& name, void (Tour::*what)()) {
  current_ = name;
  channel_->clear();
  (this->*what)();
  require(channel_->messages().empty(),
          "出现了消息：" + (channel_->messages().empty()
                                ? QString()
                                : QString::fromStdString(channel_->messages().front().text)));
}

void Tour::fail(const QString& what) const {
  throw StepFailed(QString("“%1”：%2").arg(current_, what).toStdString());
}

void Tour::picture(const QString& name, QWidget* dialog) {
  Driver::wait(60);
  QPixmap pixmap = window_->grab();
  if (dialog != nullptr && dialog != window_.get()) {
    // Without a screen there is no window frame to say what the dialog is.
    const QPixmap over = dialog->grab();
    QPainter painter(&pixmap);
    painter.fillRect(pixmap.rect(), QColor(0, 0, 0, 60));
    const QPoint at((pixmap.width() - over.width()) / 2, (pixmap.height() - over.height()) / 2);
    const QRect title(at - QPoint(0, 30), QSize(over.width(), 30));
    painter.fillRect(title.united(QRect(at, over.size())).adjusted(-1, -1, 1, 1),
                     QColor(0x5a, 0x66, 0x73));
    painter.fillRect(title, QColor(0xe3, 0xe9, 0xef));
    painter.setFont(dialog->font());
    painter.drawText(title.adjusted(10, 0, -10, 0), Qt::AlignVCenter | Qt::AlignLeft,
                     dialog->windowTitle());
    painter.drawPixmap(at, over);
  }
  const QString path =
      out_.filePath(QString("%1-%2.png").arg(paths_.size() + 1, 2, 10, QLatin1Char('0')).arg(name));
  require(pixmap.save(path), "不能写图片 " + path);
  paths_ << path;
}

// ---------------------------------------------------------------------------------------------
// Finding things

template <class Widget>
Widget* Tour::find(const QString& name, QWidget* in) const {
  auto* found = (in != nullptr ? in : window_.get())->findChild<Widget*>(name);
  require(found != nullptr, "找不到控件 " + name);
  return found;
}

QAction* Tour::action(const QString& text) const {
  for (QToolButton* button : window_->findChildren<QToolButton*>()) {
    QAction* action = button->defaultAction();
    if (button->isVisible() && action != nullptr && action->text().startsWith(text)) return action;
  }
  require(false, "找不到按钮 " + text);
  return nullptr;
}

void Tour::clickAction(const QString& text) {
  QAction* wanted = action(text);
  for (QToolButton* button : window_->findChildren<QToolButton*>()) {
    if (button->defaultAction() != wanted || !button->isVisible()) continue;
    require(button->isEnabled(), "按钮不可用：" + text);
    driver_.click(button);
    return;
  }
}

void Tour::clickButton(const QString& text, QWidget* in) {
  for (QPushButton* button : in->findChildren<QPushButton*>()) {
    if (button->text() == text) return driver_.click(button);
  }
  require(false, "找不到按钮 " + text);
}

QTreeView* Tour::grid() const {
  QWidget* page = window_->pages()->currentWidget();
  require(page != nullptr, "没有打开的页面");
  auto* found = page->findChild<bwidgets::TreeGridView*>();
  require(found != nullptr, "页面没有表格");
  return found;
}

int Tour::column(const std::string& key) const {
  const int number = dynamic_cast<const gui::ViewModel&>(*grid()->model()).getColumnIndex(key);
  require(number >= 0, "没有列 " + QString::fromStdString(key));
  return number;
}

QModelIndexList Tour::items(int column) const {
  QModelIndexList found;
  collect(*grid()->model(), {}, column, found);
  return found;
}

proxy::Element* Tour::element(const QModelIndex& index) const {
  return dynamic_cast<const gui::ViewModel&>(*grid()->model()).getInternalData(index);
}

QString Tour::text(proxy::Element* item, const std::string& key) const {
  domain::Value value;
  window_->session()->project().resItemOperator().getField(item, key, value);
  const auto* found = std::get_if<std::string>(&value);
  return found != nullptr ? QString::fromStdString(*found) : QString();
}

bool Tour::flag(proxy::Element* item, const std::string& key) const {
  domain::Value value;
  window_->session()->project().resItemOperator().getField(item, key, value);
  const auto* found = std::get_if<bool>(&value);
  return found != nullptr && *found;
}

double Tour::number(proxy::Element* item, const std::string& key) const {
  domain::Value value;
  window_->session()->project().resItemOperator().getValue(item, key, domain::EditRole, value);
  const auto* found = std::get_if<double>(&value);
  require(found != nullptr, "没有数值 " + QString::fromStdString(key));
  return *found;
}

// ---------------------------------------------------------------------------------------------
// Steps

void Tour::welcome() {
  require(window_->openProject(project_), "不能打开工程");
  driver_.key(Qt::Key_W, Qt::ControlModifier);
  require(window_->session() == nullptr, "Ctrl+W 没有关闭工程");
  auto* recent = find<QListWidget>("recentList");
  require(recent->isVisible() && recent->count() == 1, "最近的工程没有列出");
  picture("欢迎页");
}

void Tour::newProject() {
  const QString source = QDir(scratch_).filePath("示范办公楼.TBQD");
  const QString refusal = exchange::SampleGenerator::generate(120, 7, source);
  require(refusal.isEmpty(), refusal);
  const QString target = QDir(scratch_).filePath("示范办公楼.qcp");
  window_->setFileChooser(std::make_unique<GivenFile>(target));

  bool filled = false;
  const bool came =
      driver_.withPopup([this] { driver_.key(Qt::Key_N, Qt::ControlModifier); },
                        [&](QWidget* dialog) {
                          driver_.click(find<QLineEdit>("path", dialog));
                          driver_.type(source);
                          driver_.click(find<QLineEdit>("name", dialog));
                          driver_.type("示范办公楼");
                          for (QRadioButton* button : dialog->findChildren<QRadioButton*>()) {
                            if (button->text() == "目标成本测算") driver_.click(button);
                          }
                          filled = find<QLineEdit>("path", dialog)->text() == source;
                          picture("新建工程", dialog);
                          for (QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
                            if (button->text() == "新建") {
                              driver_.click(button);
                              break;
                            }
                          }
                          if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
                        });
  require(came, "Ctrl+N 没有打开新建对话框");
  require(filled, "对话框没有填上");
  require(window_->session() != nullptr, "没有新建出工程");
  require(
      window_->session()->name() == "示范办公楼" && window_->session()->type() == "目标成本测算",
      "新工程的名称或类型不对");
  require(QFileInfo::exists(target), "没有写出工程文件");
  require(window_->pages()->currentPage() == "resources", "没有显示人材机页面");
  require(!items(0).isEmpty(), "新工程没有人材机");
  picture("新建之后");
}

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
  driver_.key(Qt::Key_A, Qt::ControlModifier);
  driver_.type(QString::number(editedPrice_, 'f', 2));
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
                                        driver_.key(Qt::Key_A, Qt::ControlModifier);
                                        driver_.type("88.66");
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

void Tour::poolResources() {
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  const costing::Decimal budget = project.totals().budget;
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const scoped_refptr<records::ResourceItem> item(
      dynamic_cast<records::ResourceItem*>(element(cell)));
  records::StructureNode* unitWork = project.unitWorkOf(*item);
  const QString totals = find<QLabel>("totalsText")->text();

  // A resource that several bills use, in a bill that uses another one, too.
  std::vector<records::BudgetItem*> lines;
  collectBudget(*unitWork, lines);
  const auto bills = [&](const records::BudgetItem& of) {
    std::set<const records::Bill*> found;
    for (const records::BudgetItem* line : lines) {
      if (project.sameResource(of, *line)) found.insert(&project.billOf(*line));
    }
    return found.size();
  };
  const records::BudgetItem* whole = nullptr;
  const records::BudgetItem* part = nullptr;
  for (std::size_t i = 0; i + 1 < lines.size() && part == nullptr; ++i) {
    if (&project.billOf(*lines[i]) != &project.billOf(*lines[i + 1]) || bills(*lines[i]) < 3 ||
        lines[i]->resourceItem == item.get() || project.sameResource(*lines[i], *lines[i + 1])) {
      continue;
    }
    whole = lines[i];
    part = lines[i + 1];
  }
  require(part != nullptr, "没有三个清单共用的预算工料机");
  const costing::Decimal half =
      (project.quantity(*part) / costing::Decimal(2)).rounded(costing::MaxQuantityPlaces);
  const auto rowOf = [](QAbstractItemView* rows, const records::BudgetItem& line, const char* key) {
    const auto& view = dynamic_cast<const gui::ViewModel&>(*rows->model());
    const int column = view.getColumnIndex(key);
    const QModelIndex top = rows->model()->index(0, 0);
    for (int row = 0; row < rows->model()->rowCount(top); ++row) {
      const QModelIndex at = rows->model()->index(row, column, top);
      if (view.getInternalData(at)->id() == line.id()) return at;
    }
    return QModelIndex();
  };
  const auto choose = [&](QWidget* dialog, const records::Bill& bill) {
    auto* list = find<QListWidget>("NotionalPooling_bills", dialog);
    const QString code = QString::fromStdString(bill.code.str());
    for (int row = 0; row < list->count(); ++row) {
      if (!list->item(row)->text().startsWith(code)) continue;
      list->scrollToItem(list->item(row));
      driver_.click(list->viewport(), list->visualItemRect(list->item(row)).center());
      return;
    }
    require(false, "没有列出清单 " + code);
  };

  driver_.clickCell(grid(), cell);
  const bool came = driver_.withPopup(
      [this] { clickAction("归集到成本"); },
      [&](QWidget* dialog) {
        auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
        choose(dialog, project.billOf(*whole));
        driver_.clickCell(rows, rowOf(rows, *whole, "QCE_NPChoose"));
        driver_.clickCell(rows, rowOf(rows, *part, "QCE_NPChoose"));
        const QModelIndex quantity = rowOf(rows, *part, "QCE_NPCollectionAmount");
        const QString shown = quantity.data().toString();
        driver_.doubleClickCell(rows, quantity);
        driver_.key(Qt::Key_A, Qt::ControlModifier);
        driver_.type("999999999");
        driver_.key(Qt::Key_Return);
        Driver::wait(0);
        require(channel_->messages().size() == 1 &&
                    channel_->messages().front().text == "超过最大可归集数量，请重新输入！",
                "没有拒绝过大的归集数量");
        channel_->clear();
        require(quantity.data().toString() == shown, "拒绝之后归集数量变了");
        driver_.doubleClickCell(rows, quantity);
        driver_.key(Qt::Key_A, Qt::ControlModifier);
        driver_.type(QString::fromStdString(half.toString()));
        driver_.key(Qt::Key_Return);
        Driver::wait(0);
        require(dialog->isVisible(), "回车关闭了对话框");
        picture("归集到成本", dialog);
        clickButton("应用到其他清单", dialog);
        for (const records::BudgetItem* line : lines) {
          if (!project.sameResource(*line, *whole)) continue;
          choose(dialog, project.billOf(*line));
          require(rowOf(rows, *line, "QCE_NPChoose").data(Qt::CheckStateRole).toInt() == 2,
                  "没有应用到其他清单");
        }
        picture("应用到其他清单", dialog);
        clickButton("确定", dialog);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(came, "“归集到成本”没有打开对话框");
  require(stack.index() == steps + 1, "归集不是一个撤销步骤");
  for (const records::BudgetItem* line : lines) {
    const bool chosen = project.sameResource(*line, *whole) || project.sameResource(*line, *part);
    const costing::Decimal wanted = line == part ? half
                                    : chosen     ? project.quantity(*line)
                                                 : costing::Decimal();
    require(project.pooled(*line, *item) == wanted, "归集的数量不对");
  }
  require(text(item.get(), keys::BRIAssociation) == "√", "没有关联标记");
  require(project.totals().budget == budget, "归集后预算合价变了");
  costing::Decimal quantity;
  for (const records::BillLine& line : project.linesOf(*item)) quantity += line.costQuantity;
  require(costing::storedQuantity(quantity, item->unit().str()) == item->quantity().value(),
          "成本工料机的数量不是归集之和");
  require(cell.sibling(cell.row(), column(keys::BRIAmount)).data().toDouble() ==
              item->quantity().toDouble(),
          "页面没有显示新的数量");
  const auto* shownTotals = find<QLabel>("totalsText");
  require(Driver::waitUntil([&] { return shownTotals->text() != totals; }), "状态栏没有更新");
  picture("归集之后");

  // What is pooled is no longer offered; what is left of the other one is.
  driver_.withPopup(
      [this] { clickAction("归集到成本"); },
      [&](QWidget* dialog) {
        auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
        choose(dialog, project.billOf(*whole));
        require(!rowOf(rows, *whole, "QCE_NPAmount").isValid(), "已归集的仍然列出");
        require(rowOf(rows, *part, "QCE_NPAmount").data().toDouble() ==
                    (project.quantity(*part) - half).rounded(costing::MaxQuantityPlaces).toDouble(),
                "剩余可归集数量不对");
        driver_.key(Qt::Key_Escape);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(stack.index() == steps + 1, "取消之后仍然归集了");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "归集没有完全撤销");
  require(Driver::waitUntil([&] { return shownTotals->text() == totals; }), "撤销后状态栏没有恢复");
}

void Tour::associateBills() {
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  const costing::Decimal budget = project.totals().budget;
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const scoped_refptr<records::ResourceItem> item(
      dynamic_cast<records::ResourceItem*>(element(cell)));
  driver_.clickCell(grid(), cell);

  // The pooling dialog opens when the one before it has gone.
  bool handedOver = false;
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr || !dialog->isVisible() ||
        dialog->windowTitle() != "选择归集到成本的预算收入工料机") {
      return;
    }
    poll.stop();
    handedOver = true;
    auto* rows = find<bwidgets::TreeGridView>("NotionalPooling_tree", dialog);
    driver_.clickCell(rows, rows->model()->index(0, 0));  // the bill's box, for all below it
    picture("关联后归集到成本", dialog);
    clickButton("确定", dialog);
    if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
  });

  QString marked;
  const bool came = driver_.withPopup(
      [this] { clickAction("关联清单"); },
      [&](QWidget* dialog) {
        auto* bills = find<bwidgets::TreeGridView>("AssociationBill_right", dialog);
        QModelIndex bill = bills->model()->index(0, 0);
        while (bills->model()->hasChildren(bill)) bill = bills->model()->index(0, 0, bill);
        marked = bill.data().toString();
        driver_.clickCell(bills, bill.sibling(bill.row(), 1));
        driver_.key(Qt::Key_Space);
        auto* collect = find<QAbstractButton>("AssociationBill_collect", dialog);
        driver_.click(collect, QPoint(8, collect->height() / 2));
        picture("关联清单", dialog);
        poll.start(10);
        clickButton("确定", dialog);
        if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
      });
  require(came, "“关联清单”没有打开对话框");
  require(handedOver, "确定后没有弹出归集到成本");
  require(stack.index() == steps + 2, "关联和归集不是两个撤销步骤");
  const std::vector<records::Bill*> associated = project.associatedBills(*item);
  require(
      associated.size() == 1 && QString::fromStdString(associated.front()->code.str()) == marked,
      "关联的不是勾选的清单");
  require(text(item.get(), keys::BRIAssociation) == "√", "没有关联标记");
  for (int row = 0; row < associated.front()->childCount(); ++row) {
    const auto& line = static_cast<const records::BudgetItem&>(*associated.front()->child(row));
    require(project.pooled(line, *item) == project.quantity(line), "没有全部归集到成本");
  }
  require(project.totals().budget == budget, "归集后预算合价变了");
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "关联和归集没有完全撤销");
}

void Tour::billTerms() {
  using costing::Decimal;
  records::Project& project = window_->session()->project().project();
  QUndoStack& stack = window_->session()->undoStack();
  const int steps = stack.index();
  const std::string before = project.dump();
  driver_.key(Qt::Key_Y, Qt::ControlModifier);  // the association of the step before
  const QModelIndex cell = items(column(keys::BRIName)).value(0);
  const auto* item = dynamic_cast<records::ResourceItem*>(element(cell));
  driver_.clickCell(grid(), cell);
  const QString shown = "清单明细：" + text(element(cell), keys::BRICode);
  require(Driver::waitUntil(
              [&] { return find<QLabel>("ResItemBill_title")->text().startsWith(shown); }),
          "下方没有显示当前人材机的清单");

  auto* pane = find<bwidgets::TreeGridView>("ResItemBill_grid");
  const auto bills = [&] { return project.linesOf(*item); };
  const auto at = [&](const records::Bill& bill, const std::string& key) {
    const int wanted = pane->viewModel()->getColumnIndex(key);
    for (int row = 0; row < pane->model()->rowCount(); ++row) {
      const QModelIndex index = pane->model()->index(row, wanted);
      if (pane->elementAt(index)->id() == bill.id()) return index;
    }
    return QModelIndex();
  };
  require(pane->model()->rowCount() == static_cast<int>(bills().size()), "清单的行数不对");
  const auto used = bills();
  const auto found = std::find_if(used.begin(), used.end(), [](const records::BillLine& line) {
    return !line.budgetQuantity.isZero();
  });
  require(found != used.end(), "没有使用当前人材机的清单");
  records::Bill& bill = *found->bill;
  const auto line = [&] {
    for (const records::BillLine& now : bills()) {
      if (now.bill == &bill) return now;
    }
    return records::BillLine();
  };

  bool refused = false;
  driver_.clickCell(pane, at(bill, keys::SEName));
  Driver::wait(50);
  const bool came =
      driver_.withPopup([this] { driver_.key(Qt::Key_F6); },
                        [&](QWidget* dialog) {
                          driver_.type("0");
                          driver_.key(Qt::Key_Return);
                          refused = dialog->isVisible() && channel_->messages().size() == 1 &&
                                    channel_->messages()[0].text == "系数不能设置为零";
                          channel_->clear();
                          driver_.type("1.05");
                          picture("批量设置系数", dialog);
                          driver_.key(Qt::Key_Return);
                          if (dialog->isVisible()) static_cast<QDialog*>(dialog)->reject();
                        });
  require(came, "F6 没有打开对话框");
  require(refused, "系数为零没有被拒绝");
  const Decimal factor = *Decimal::parse("1.05");
  require(line().costQuantity == found->budgetQuantity * factor, "系数没有进入成本数量");

  driver_.clickCell(pane, at(bill, keys::SEContent));
  driver_.key(Qt::Key_F2);
  driver_.key(Qt::Key_A, Qt::ControlModifier);
  driver_.type("0.5*3");
  driver_.key(Qt::Key_Return);
  require(line().costQuantity == bill.quantity.value() * *Decimal::parse("1.5") * factor,
          "实际含量没有进入成本数量");
  driver_.clickCell(pane, at(bill, keys::RIExcludedTaxFee));
  driver_.key(Qt::Key_F2);
  driver_.key(Qt::Key_A, Qt::ControlModifier);
  driver_.type("100*1.03");
  driver_.key(Qt::Key_Return);
  require(line().excludedAmount == (bill.quantity.value() * 103).rounded(costing::MoneyPlaces),
          "分包单价没有进入成本合价");
  picture("清单明细");

  const std::vector<records::Bill*> associated = project.associatedBills(*item);
  require(associated.size() == 1, "没有已关联的清单");
  driver_.clickCell(pane, at(*associated.front(), keys::SEName));
  Driver::wait(50);
  clickAction("取消关联");
  require(project.associatedBills(*item).empty(), "没有取消关联");
  require(stack.index() == steps + 5, "每次设置不是一个撤销步骤");
  while (stack.index() > steps) driver_.key(Qt::Key_Z, Qt::ControlModifier);
  require(project.dump() == before, "清单的设置没有完全撤销");
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
  const QString path = out_.filePath("人材机.xlsx");
  window_->setFileChooser(std::make_unique<GivenFile>(path));
  driver_.key(Qt::Key_E, Qt::ControlModifier);
  const exchange::ReadWorkbook book = exchange::readSpreadsheet(path);
  require(book.problem.isEmpty(), book.problem);
  require(book.sheets.size() == 1 && book.sheets.front().name == "人材机", "工作表不对");
  const exchange::ReadSheet& sheet = book.sheets.front();
  const auto& grid = dynamic_cast<const bwidgets::TreeGridView&>(*this->grid());
  const QString difference = sheetDifference(sheet, grid);
  require(difference.isEmpty(), difference);
  require(sheet.frozenColumns == grid.frozenColumnCount(), "冻结的列不对");
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
  spreadsheets_ << path;
  picture("导出之后");
}

void Tour::feeSummaries() {
  using Kind = records::SummaryLine::Kind;
  auto* list = find<QListWidget>("pageList");
  const auto goTo = [&](const QString& title) {
    const auto found = list->findItems(title, Qt::MatchExactly);
    require(!found.isEmpty(), "没有页面 " + title);
    driver_.click(list->viewport(), list->visualItemRect(found.front()).center());
  };
  const auto shown = [this] {
    shell::SummaryView* view = nullptr;
    for (auto* each : window_->findChildren<shell::SummaryView*>()) {
      if (each->isVisible()) view = each;
    }
    require(view != nullptr, "没有显示汇总");
    return view;
  };
  goTo("费用汇总");
  auto* kinds = find<QTreeView>("QCEFeeSummaryTreeView");
  const costing::Totals& totals = window_->session()->project().totals();
  QStringList sums;
  for (int i = 0; i < kinds->model()->rowCount(); ++i) {
    driver_.clickCell(kinds, kinds->model()->index(i, 0));
    shell::SummaryView* view = shown();
    const auto& model = view->model();
    costing::Decimal income;
    costing::Decimal cost;
    for (int row = 0; row + 1 < model.rowCount(); ++row) {
      income += model.row(model.index(row, 0))->line().income;
      cost += model.row(model.index(row, 0))->line().cost;
    }
    const auto& total = model.row(model.index(model.rowCount() - 1, 0))->line();
    require(total.kind == Kind::Total && total.income == income && total.cost == cost,
            "合计不等于各行之和");
    sums << QString::fromStdString(total.income.toString(2) + " " + total.cost.toString(2));
    require(sums.front() == sums.back(), "各汇总的合计不同：" + sums.join("、"));
    picture(kinds->model()->index(i, 0).data().toString());

    const QString path = out_.filePath(view->windowTitle() + ".xlsx");
    window_->setFileChooser(std::make_unique<GivenFile>(path));
    view->grid()->setFocus();
    driver_.key(Qt::Key_E, Qt::ControlModifier);
    const exchange::ReadWorkbook book = exchange::readSpreadsheet(path);
    require(book.problem.isEmpty() && book.sheets.size() == 1, "导出不对：" + book.problem);
    const QString difference = sheetDifference(book.sheets.front(), *view->grid());
    require(difference.isEmpty(), difference);
    spreadsheets_ << path;
  }

  driver_.clickCell(kinds, kinds->model()->index(0, 0));
  shell::SummaryView* view = shown();
  const auto& model = view->model();
  const QModelIndex works = model.index(0, 0);
  costing::Totals elements;
  QModelIndex labour;
  for (int row = 0; row < model.rowCount(works); ++row) {
    const QModelIndex index = model.index(row, 0, works);
    const auto& line = model.row(index)->line();
    if (line.kind != Kind::Element) continue;
    if (!labour.isValid()) labour = index;
    elements.budget += line.income;
    elements.excluded += line.cost;
  }
  require(elements.budget == totals.budget && elements.excluded == totals.excluded,
          "人材机与状态栏的合计不同");
  const costing::Decimal cost = model.row(labour)->line().cost;
  driver_.doubleClickCell(view->grid(), labour);
  require(window_->pages()->currentPage() == "resources", "双击没有转到来源");
  costing::Decimal source;
  auto& resources = dynamic_cast<bwidgets::TreeGridView&>(*grid());
  for (const proxy::Element* element : resources.selectedElements()) {
    if (const auto* group = dynamic_cast<const records::ResourceGroup*>(element)) {
      source += group->totals().excluded;
    }
  }
  require(source == cost, "来源的金额与汇总不同");
  picture("由汇总查看来源");
}

void Tour::indirectFees() {
  const QString before = window_->pages()->currentPage();
  require(window_->pages()->setCurrentPage("fees"), "没有间接费页面");
  auto* groups = find<gui::TreeGridView>("QCEIndirectFeeTreeView");
  auto* table = find<bwidgets::TableView>("QCEIndirectFeeTableView");
  require(groups->currentIndex().isValid() && table->model()->rowCount() > 0, "没有选中费用组");
  const auto cell = [table](const std::string& key, int row) {
    return table->model()->index(row, table->viewModel()->getColumnIndex(key));
  };
  int row = 0;
  while (row < table->model()->rowCount() &&
         cell(keys::IFCostRate, row).data().toString().isEmpty()) {
    ++row;
  }
  const QModelIndex rate = cell(keys::IFCostRate, row);
  require(rate.isValid(), "没有按费率计算的费用");
  const records::Project& project = window_->session()->project().project();
  const auto exact = [](const QVariant& value) {
    return *costing::Decimal::fromDouble(value.toDouble());
  };
  const costing::Decimal total = project.feeTotal();
  const costing::Decimal base = exact(cell(keys::IFCostBase, row).data(Qt::EditRole));
  const costing::Decimal amount = exact(cell(keys::IFCostAmount, row).data(Qt::EditRole));
  const costing::Decimal changed = exact(rate.data(Qt::EditRole)) + 1;
  driver_.clickCell(table, rate);
  driver_.key(Qt::Key_F2);
  driver_.key(Qt::Key_A, Qt::ControlModifier);
  driver_.type(QString::fromStdString(changed.toString()));
  driver_.key(Qt::Key_Return);
  const costing::Decimal expected = (base * changed / 100).rounded(2);
  require(exact(cell(keys::IFCostAmount, row).data(Qt::EditRole)) == expected,
          "成本金额没有随费率改变");
  require(project.feeTotal() == total + expected - amount, "间接费合计不对");
  require(Driver::waitUntil([this] {
            return find<QLabel>("totalsText")->text().contains(window_->session()->totals().fees);
          }),
          "状态栏的间接费没有更新");

  const QString path = out_.filePath("间接费.xlsx");
  window_->setFileChooser(std::make_unique<GivenFile>(path));
  driver_.key(Qt::Key_E, Qt::ControlModifier);
  const exchange::ReadWorkbook book = exchange::readSpreadsheet(path);
  require(book.problem.isEmpty() && book.sheets.size() == 1, "间接费没有导出：" + book.problem);
  const QModelIndex group = groups->currentIndex();
  require(book.sheets.front().name == group.sibling(group.row(), 0).data().toString(),
          "工作表不是费用组的名称");
  const QString difference = sheetDifference(book.sheets.front(), *table);
  require(difference.isEmpty(), difference);
  spreadsheets_ << path;
  picture("间接费");
  window_->pages()->setCurrentPage(before);
}

void Tour::zoom() {
  const int before = grid()->fontMetrics().height();
  driver_.key(Qt::Key_Plus, Qt::ControlModifier);
  driver_.key(Qt::Key_Plus, Qt::ControlModifier);
  driver_.key(Qt::Key_Plus, Qt::ControlModifier);
  require(grid()->fontMetrics().height() > before, "没有放大");
  picture("放大");
  driver_.key(Qt::Key_0, Qt::ControlModifier);
  require(grid()->fontMetrics().height() == before, "没有恢复 100%");
}

void Tour::reopen() {
  const QString totals = window_->session()->totals().includingTax;
  driver_.key(Qt::Key_W, Qt::ControlModifier);
  require(window_->openProject(project_), "不能再次打开工程");
  require(window_->session()->totals().includingTax == totals, "再次打开后合计不同");
  bool price = false;
  bool annotated = false;
  for (const QModelIndex& index : items(0)) {
    proxy::Element* item = element(index);
    if (item->id() == editedItem_) price = number(item, keys::BRIExcludedTaxFee) == editedPrice_;
    std::string comment;
    if (item->id() == annotatedItem_ &&
        window_->session()->project().resItemOperator().getComment(item, comment)) {
      annotated = comment.find("供应商") != std::string::npos;
    }
  }
  require(price, "再次打开后单价不是改过的");
  require(annotated, "再次打开后批注不在");
  picture("重新打开");
}

}  // namespace cli
