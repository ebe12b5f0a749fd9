#include "workbench/cli/tour.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>

#include "host/bwidgets/tree_grid_view.h"
#include "host/domain/field_keys.h"
#include "host/gui/view_model.h"
#include "workbench/cli/given_file.h"
#include "workbench/cli/sheet_check.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/services/install.h"
#include "workbench/shell/main_window.h"
#include "workbench/shell/page_stack.h"
#include "workbench/shell/session.h"

namespace cli {

namespace keys = domain::keys;

namespace {

constexpr int kWidth = 1440;  // pixels of the pictures
constexpr int kHeight = 860;
constexpr QSize kNarrow(1024, 720);  // the least window that everything fits into

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
  step("列设置", &Tour::columns);
  step("撤销与恢复", &Tour::undoAndRedo);
  step("归集到成本", &Tour::poolResources);
  step("关联清单", &Tour::associateBills);
  step("清单明细", &Tour::billTerms);
  step("分部分项", &Tour::bills);
  step("人材机归集", &Tour::designItems);
  step("范围", &Tour::subProject);
  step("导出", &Tour::exportGrid);
  step("费用汇总", &Tour::feeSummaries);
  step("间接费", &Tour::indirectFees);
  step("导出报表", &Tour::report);
  step("分包设置", &Tour::subcontracts);
  step("缩放", &Tour::zoom);
  step("重新打开", &Tour::reopen);
  step("窄窗口", &Tour::narrowWindow);
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

QWidget* Tour::window() const {
  return window_.get();
}

void Tour::goTo(const QString& key) {
  auto* list = find<QListWidget>("pageList");
  const int row = window_->pages()->pages().indexOf(key);
  require(row >= 0, "没有页面 " + key);
  driver_.clickCell(list, list->model()->index(row, 0));
  require(window_->pages()->currentPage() == key, "没有切换到页面 " + key);
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

exchange::ReadSheet Tour::exported(const QString& name, const bwidgets::TreeGridView& shown) {
  const QString path = out_.filePath(name + ".xlsx");
  window_->setFileChooser(std::make_unique<GivenFile>(path));
  driver_.key(Qt::Key_E, Qt::ControlModifier);
  const exchange::ReadWorkbook book = exchange::readSpreadsheet(path);
  require(book.problem.isEmpty(), book.problem);
  require(book.sheets.size() == 1, "工作表不对");
  const exchange::ReadSheet& sheet = book.sheets.front();
  const QString difference = sheetDifference(sheet, shown);
  require(difference.isEmpty(), difference);
  const std::vector<int> columns = shown.visibleColumns();
  const auto frozen = std::count_if(columns.begin(), columns.end(), [&shown](int column) {
    return shown.header()->visualIndex(column) < shown.frozenColumnCount();
  });
  require(sheet.frozenColumns == frozen, "冻结的列不对");
  spreadsheets_ << path;
  return sheet;
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

void Tour::narrowWindow() {
  window_->resize(kNarrow);
  const QStringList keys = window_->pages()->pages();
  for (const QString& key : keys) {
    goTo(key);
    picture("窄窗口" + window_->session()->page(key)->title);
    require(window_->size() == kNarrow, "页面比窗口大：" + key);
    for (QAbstractButton* button : window_->findChildren<QAbstractButton*>()) {
      const int needed = button->fontMetrics().horizontalAdvance(button->text().remove('&'));
      const bool whole =
          button->width() >= needed && button->visibleRegion().boundingRect() == button->rect();
      require(!button->isVisible() || whole, "按钮显示不全：" + button->text());
    }
  }
}

}  // namespace cli
