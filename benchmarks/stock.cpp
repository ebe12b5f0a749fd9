#include "benchmarks/stock.h"

#include <QLocale>

namespace bench {
namespace {

// Two decimals and thousands separators, as the columns of ours show.
class MoneyDelegate : public QStyledItemDelegate {
 public:
  QString displayText(const QVariant& value, const QLocale& locale) const override {
    if (value.userType() == QMetaType::Double) return locale.toString(value.toDouble(), 'f', 2);
    return QStyledItemDelegate::displayText(value, locale);
  }
};

}  // namespace

Stock::Stock(const Rows& rows) : delegate_(std::make_unique<MoneyDelegate>()) {
  model_.setColumnCount(TextColumns + NumberColumns);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    QList<QStandardItem*> items;
    for (int c = 0; c < TextColumns; ++c) {
      items << new QStandardItem(QString::fromStdString(rows.text(row, c)));
    }
    for (int c = 0; c < NumberColumns; ++c) {
      auto* item = new QStandardItem;
      item->setData(rows.number(row, c), Qt::DisplayRole);
      items << item;
    }
    model_.appendRow(items);
  }
  proxy_.setSortLocaleAware(true);
  proxy_.setSourceModel(&model_);
}

}  // namespace bench
