#include "pooling/res_item_bill_model.h"

#include <QColor>
#include <utility>

#include "host/base/number_text.h"
#include "host/bwidgets/cell_text.h"
#include "host/domain/field_keys.h"
#include "host/domain/qce/res_item_bill_operator.h"

namespace gui::qce {
namespace {

namespace keys = domain::keys;

bool isBudgetColumn(const std::string& key) {
  return key == keys::BRIExcludedTaxFee || key == keys::BRIExcludedTaxTotalCost;
}

bool isPriceColumn(const std::string& key) {
  return key == keys::RIExcludedTaxFee || key == keys::BRIBillUnitPrice;
}

// "#RRGGBB", with or without the mark; no colour for anything else.
QVariant colorOf(const std::string& text) {
  const bool marked = !text.empty() && text.front() == '#';
  bool ok = false;
  const uint number = QString::fromStdString(marked ? text.substr(1) : text).toUInt(&ok, 16);
  if (!ok) return {};
  return QColor((number >> 16) & 0xFF, (number >> 8) & 0xFF, number & 0xFF);
}

}  // namespace

domain::qce::QCEResItemBillOperator* QCEResItemBillModelImpl::getBillOperator() const {
  return dynamic_cast<domain::qce::QCEResItemBillOperator*>(getOperator());
}

// ---------------------------------------------------------------------------------------------
// What is shown

void QCEResItemBillModelImpl::setBaseResItem(proxy::Element* item) {
  beginResetModel();
  if (auto* op = getBillOperator()) op->setBaseResItem(item);
  endResetModel();
}

void QCEResItemBillModelImpl::setSubProject(proxy::Element* subProject) {
  beginResetModel();
  if (auto* op = getBillOperator()) op->setSubProject(subProject);
  endResetModel();
}

void QCEResItemBillModelImpl::setTableName(std::string name) {
  tableName_ = std::move(name);
  auto* op = getBillOperator();
  domain::DisplayTable* table = op != nullptr ? op->getTable(tableName_) : nullptr;
  if (table != nullptr && table != getDisplayTable()) {
    setDisplayTable(table);
  } else if (columnCount({}) > 0) {
    emit headerDataChanged(Qt::Horizontal, 0, columnCount({}) - 1);
  }
}

void QCEResItemBillModelImpl::cleanUpResources() {
  beginResetModel();
  if (auto* op = getBillOperator()) {
    op->setBaseResItem(nullptr);
    op->setSubProject(nullptr);
  }
  endResetModel();
}

// ---------------------------------------------------------------------------------------------
// Commands

bool QCEResItemBillModelImpl::setCoefficient(std::vector<proxy::Element*> bills, double coefficient,
                                             bool multiply) {
  auto* op = getBillOperator();
  return op != nullptr && !bills.empty() && op->setCoefficient(bills, coefficient, multiply);
}

bool QCEResItemBillModelImpl::setAdjustedContent(std::vector<proxy::Element*> bills,
                                                 std::string content) {
  auto* op = getBillOperator();
  return op != nullptr && !bills.empty() && op->setAdjustedContent(bills, content);
}

bool QCEResItemBillModelImpl::setExcludeTaxPrice(proxy::Element* bill, double price) {
  auto* op = getBillOperator();
  return op != nullptr && bill != nullptr && op->setExcludeTaxPrice(bill, price);
}

bool QCEResItemBillModelImpl::setExcludeTaxPriceExpr(proxy::Element* bill,
                                                     const std::string& expression) {
  auto* op = getBillOperator();
  return op != nullptr && bill != nullptr && op->setExcludeTaxPriceExpr(bill, expression);
}

bool QCEResItemBillModelImpl::disassociateBill(std::vector<proxy::Element*> bills) {
  auto* op = getBillOperator();
  return op != nullptr && !bills.empty() && op->disassociateBill(bills);
}

// ---------------------------------------------------------------------------------------------
// Cells

std::string QCEResItemBillModelImpl::formatDoubleValue(const domain::DataField* field, double value,
                                                       std::optional<int> precision) const {
  if (!precision && field != nullptr) precision = field->precision;
  return field != nullptr && field->stripTrailingZeros.value_or(false)
             ? base::ToPlainStringWithStripTrailingZeros(value, precision)
             : base::ToPlainString(value, precision);
}

QVariant QCEResItemBillModelImpl::budgetData(const proxy::Element* row,
                                             const domain::ColumnDescriptor& column,
                                             const QModelIndex& index, int role) const {
  switch (role) {
    case Qt::TextAlignmentRole:
      return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    case domain::FieldTypeRole:
      return domain::FloatingPointField;
    case Qt::DisplayRole: {
      domain::Value value;
      if (row == nullptr || getOperator() == nullptr ||
          !getOperator()->getValue(row, column.key, role, value)) {
        return {};
      }
      const std::optional<double> number = toNumber(value);
      if (!number) return Visit(value);
      return QString::fromStdString(formatDoubleValue(column.field, *number, std::nullopt));
    }
    case Qt::BackgroundRole: {
      const auto* op = getBillOperator();
      return row != nullptr && op != nullptr ? colorOf(op->getColorText(row)) : QVariant();
    }
    default:
      return TViewModel::data(index, role);
  }
}

QVariant QCEResItemBillModelImpl::data(const QModelIndex& index, int role) const {
  const domain::DisplayRow* header = getHeader();
  const domain::ColumnDescriptor* column =
      header != nullptr ? header->column(index.column()) : nullptr;
  if (column == nullptr) return TViewModel::data(index, role);
  if (isBudgetColumn(column->key)) {
    return budgetData(getInternalData(index), *column, index, role);
  }
  if (role == domain::FieldTypeRole &&
      (column->key == keys::RIExcludedTaxFee || column->key == keys::RIExcludedTaxTotalCost)) {
    return domain::FloatingPointField;
  }
  if (role == Qt::TextAlignmentRole) {
    // A text, since expressions are typed, that shows a number.
    if (column->key == keys::SEContent) return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (column->key == keys::BRIAssociation) return static_cast<int>(Qt::AlignCenter);
  }
  return TViewModel::data(index, role);
}

bool QCEResItemBillModelImpl::setData(const QModelIndex& index, const QVariant& value, int role) {
  const std::string key = getFieldName(index.column());
  if (role != Qt::EditRole || value.userType() != QMetaType::QString) {
    return TViewModel::setData(index, value, role);
  }
  const QString text = value.toString().trimmed();
  // "1,200.50" from a spreadsheet is a number, and no expression with a comma in it.
  const std::optional<QString> number = bwidgets::plainNumber(text);
  if (key == keys::SEContent) return TViewModel::setData(index, number.value_or(text), role);
  if (!isPriceColumn(key) || number || text.isEmpty()) {
    return TViewModel::setData(index, number && isPriceColumn(key) ? *number : value, role);
  }
  if (!(flags(index) & Qt::ItemIsEditable)) return false;
  const app::ScopedUndo undo((std::string()));
  if (!setExcludeTaxPriceExpr(getInternalData(index), text.toStdString())) return false;
  emit dataChanged(index, index, {role});
  return true;
}

Qt::ItemFlags QCEResItemBillModelImpl::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = TViewModel::flags(index) | Qt::ItemIsEnabled;
  const proxy::Element* row = index.isValid() ? getInternalData(index) : nullptr;
  const auto* op = getBillOperator();
  if (row == nullptr || op == nullptr || op->isOrdinaryBill(row)) return flags;
  const domain::DisplayRow* header = getHeader();
  const domain::ColumnDescriptor* column =
      header != nullptr ? header->column(index.column()) : nullptr;
  if (column == nullptr) return flags;
  if (column->key == keys::SEUnit) flags |= Qt::ItemIsEditable;
  if (column->key == keys::RIExcludedTaxFee) flags &= ~Qt::ItemFlags(Qt::ItemIsEditable);
  return flags;
}

QVariant QCEResItemBillModelImpl::headerData(int section, Qt::Orientation orientation,
                                             int role) const {
  if (role == Qt::DisplayRole && orientation == Qt::Vertical) return section + 1;
  if (role == Qt::DisplayRole && getFieldName(section) == keys::BRIBillUnitPrice) {
    const auto* op = getBillOperator();
    if (op != nullptr && op->getTableKind(tableName_) == domain::qce::SubcontractBillTable) {
      return QStringLiteral("清单分包单价（元）");
    }
  }
  return TViewModel::headerData(section, orientation, role);
}

}  // namespace gui::qce
