#include "destructors/cost_account_dialog.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "host/bwidgets/text_matcher.h"

namespace gui::qce::destructors {

namespace {

constexpr int NumberRole = Qt::UserRole;

/// Hides what neither matches nor lies above a match; answers whether anything is left.
bool narrowBelow(QTreeWidgetItem* item, const bwidgets::TextMatcher& matcher, bool all) {
  bool shown = all || matcher.matches(item->text(0)) || matcher.matches(item->text(1));
  for (int i = 0; i < item->childCount(); ++i) {
    shown = narrowBelow(item->child(i), matcher, all) || shown;
  }
  item->setHidden(!shown);
  return shown;
}

}  // namespace

DesCostAccountDialog::DesCostAccountDialog(const QString& caption, const Entries& accounts,
                                           const proxy::Element* current, QWidget* parent)
    : Dialog(parent), filter_(new QLineEdit(this)), tree_(new QTreeWidget(this)) {
  setWindowTitle("设置成本科目");
  filter_->setObjectName("DesCostAccount_filter");
  filter_->setPlaceholderText("输入编码、名称或拼音首字母过滤");
  filter_->setClearButtonEnabled(true);
  filter_->installEventFilter(this);
  tree_->setObjectName("DesCostAccount_tree");
  tree_->setHeaderLabels({"编码", "名称"});
  tree_->setUniformRowHeights(true);
  tree_->setAlternatingRowColors(true);

  const auto add = [this](QTreeWidgetItem* item, proxy::Element* account) {
    item->setData(0, NumberRole, static_cast<int>(accounts_.size()));
    accounts_.push_back(account);
  };
  auto* none = new QTreeWidgetItem(tree_, {"", "（无成本科目）"});
  add(none, nullptr);
  tree_->setCurrentItem(none);
  std::vector<QTreeWidgetItem*> above;  // by level
  for (const auto& entry : accounts) {
    const auto level =
        static_cast<std::size_t>(qBound(0, entry.level, static_cast<int>(above.size())));
    above.resize(level);
    const QStringList texts{QString::fromStdString(entry.code), QString::fromStdString(entry.name)};
    auto* item = above.empty() ? new QTreeWidgetItem(tree_, texts)
                               : new QTreeWidgetItem(above.back(), texts);
    add(item, entry.account);
    above.push_back(item);
    if (entry.account != nullptr && entry.account == current) tree_->setCurrentItem(item);
  }
  tree_->expandAll();
  tree_->header()->resizeSection(0, 200);
  tree_->scrollToItem(tree_->currentItem(), QAbstractItemView::PositionAtCenter);

  connect(filter_, &QLineEdit::textChanged, this, &DesCostAccountDialog::narrow);
  connect(tree_, &QTreeWidget::itemDoubleClicked, this, &DesCostAccountDialog::accept);

  auto* label = new QLabel(caption, this);
  label->setWordWrap(true);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addWidget(filter_);
  layout->addWidget(tree_, 1);
  auto* buttons = createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
  okButton_ = buttons->button(QDialogButtonBox::Ok);
  layout->addWidget(buttons);
  resize(520, 560);
  filter_->setFocus();
}

DesCostAccountDialog::~DesCostAccountDialog() = default;

proxy::Element* DesCostAccountDialog::account() const {
  const QTreeWidgetItem* item = tree_->currentItem();
  return item != nullptr ? accounts_.at(item->data(0, NumberRole).toUInt()) : nullptr;
}

void DesCostAccountDialog::accept() {
  // A filter that leaves nothing leaves nothing to choose.
  if (hasChoice()) Dialog::accept();
}

bool DesCostAccountDialog::hasChoice() const {
  return tree_->currentItem() != nullptr && !tree_->currentItem()->isHidden();
}

void DesCostAccountDialog::narrow(const QString& wish) {
  const bwidgets::TextMatcher matcher(wish.trimmed());
  QTreeWidgetItem* best = nullptr;
  for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
    narrowBelow(tree_->topLevelItem(i), matcher, matcher.isEmpty());
  }
  // What was meant is the first row that matches itself, not one that only stands above it.
  for (QTreeWidgetItemIterator at(tree_, QTreeWidgetItemIterator::NotHidden); *at != nullptr;
       ++at) {
    if (best == nullptr && (matcher.matches((*at)->text(0)) || matcher.matches((*at)->text(1)))) {
      best = *at;
    }
  }
  if (best != nullptr) {
    tree_->setCurrentItem(best);
    tree_->scrollToItem(best);
  }
  okButton_->setEnabled(hasChoice());
}

bool DesCostAccountDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == filter_ && event->type() == QEvent::KeyPress) {
    switch (static_cast<QKeyEvent*>(event)->key()) {
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_PageUp:
      case Qt::Key_PageDown:
        return QCoreApplication::sendEvent(tree_, event);
      default:
        break;
    }
  }
  return Dialog::eventFilter(watched, event);
}

}  // namespace gui::qce::destructors
