#include "host/presentation/column_menu.h"

#include <QCheckBox>
#include <QWidgetAction>
#include <utility>

namespace gui {
namespace {

// A row of the menu: it takes a click wherever it falls, not on its text alone.
class Box : public QCheckBox {
 public:
  using QCheckBox::QCheckBox;

 protected:
  bool hitButton(const QPoint& at) const override { return rect().contains(at); }
};

}  // namespace

ColumnMenu::ColumnMenu(Columns columns, QWidget* parent)
    : QMenu("列设置", parent), columns_(std::move(columns)) {
  connect(this, &QMenu::aboutToShow, this, &ColumnMenu::fill);
}

void ColumnMenu::fill() {
  clear();
  const domain::DisplayTable* table = columns_.table();
  if (table == nullptr) return;
  const domain::DisplayRow& header = *table->getHeader();
  for (int number = 0; number < header.columnCount(); ++number) {
    const domain::ColumnDescriptor& column = *header.column(number);
    const std::string key = column.key;
    const std::string title = column.title              ? *column.title
                              : column.field != nullptr ? column.field->displayName
                                                        : key;
    auto* box = new Box(QString::fromStdString(title), this);
    box->setObjectName("column_" + QString::fromStdString(key));
    box->setContentsMargins(8, 2, 8, 2);
    box->setChecked(columns_.isShown(column));
    box->setEnabled(columns_.fixed.count(key) == 0);
    connect(box, &QCheckBox::toggled, this, [this, key](bool on) { columns_.show(key, on); });
    auto* entry = new QWidgetAction(this);
    entry->setDefaultWidget(box);
    addAction(entry);
  }
}

}  // namespace gui
