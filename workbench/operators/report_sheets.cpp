#include "workbench/operators/report_sheets.h"

#include <string>
#include <utility>

#include "host/base/number_text.h"
#include "host/domain/field_keys.h"
#include "workbench/operators/fee_summary_operator.h"
#include "workbench/operators/indirect_fee_operators.h"

namespace operators {

namespace keys = domain::keys;

namespace {

using costing::Decimal;
using domain::ColumnDescriptor;

constexpr base::Color GroupFill{245, 248, 252};

int placesOf(double value, const domain::DataField& field) {
  const int places = field.precision.value_or(0);
  if (!field.stripTrailingZeros.value_or(false)) return places;
  const std::string text = base::ToPlainStringWithStripTrailingZeros(value, places);
  const auto point = text.find('.');
  return point == std::string::npos ? 0 : static_cast<int>(text.size() - point - 1);
}

app::SheetCell cellOf(const domain::Operator& rows, const proxy::Element& element,
                      const ColumnDescriptor& column) {
  app::SheetCell cell;
  domain::Value value;
  if (rows.getValue(&element, column.key, domain::DisplayRole, value)) {
    if (const auto* number = std::get_if<double>(&value)) {
      cell.value = *number;
      cell.places = placesOf(*number, *column.field);
    } else if (const auto* text = std::get_if<std::string>(&value); text && !text->empty()) {
      cell.value = *text;
    }
  }
  domain::Value look;
  if (rows.getValue(&element, column.key, domain::FontRole, look)) {
    const auto* font = std::get_if<base::Font>(&look);
    cell.bold = font != nullptr && font->bold;
  }
  if (rows.getValue(&element, column.key, domain::ForegroundRole, look)) {
    if (const auto* color = std::get_if<base::Color>(&look)) cell.foreground = *color;
  }
  if (rows.getValue(&element, column.key, domain::BackgroundRole, look)) {
    if (const auto* color = std::get_if<base::Color>(&look)) cell.background = *color;
  }
  return cell;
}

/// The columns of a table on their way into a sheet.
class Columns {
 public:
  /// Without the column `left`.
  Columns(const domain::DisplayTable& table, const std::string& left) {
    for (int i = 0; i < table.getHeader()->columnCount(); ++i) {
      const ColumnDescriptor* column = table.getHeader()->column(i);
      if (column->key != left && column->field != nullptr) columns_.push_back(column);
    }
  }

  void describe(app::Sheet& sheet, const std::string& treeKey) const {
    for (const ColumnDescriptor* column : columns_) {
      app::SheetColumn made;
      made.key = column->key;
      made.title = column->field->displayName;
      made.width = column->width.value_or(made.width);
      made.thousands = column->field->thousandsSeparators;
      if (column->key == treeKey) sheet.treeColumn = static_cast<int>(sheet.columns.size());
      sheet.columns.push_back(std::move(made));
    }
    sheet.frozenColumns = sheet.treeColumn + 1;
  }

  app::SheetRow row(const domain::Operator& rows, const proxy::Element& element, int level) const {
    app::SheetRow made;
    made.level = level;
    for (const ColumnDescriptor* column : columns_) {
      made.cells.push_back(cellOf(rows, element, *column));
    }
    return made;
  }

 private:
  std::vector<const ColumnDescriptor*> columns_;
};

void addSummaryRows(app::Sheet& sheet, const Columns& columns, const FeeSummaryOperator& rows,
                    const proxy::Element& element, int level) {
  sheet.rows.push_back(columns.row(rows, element, level));
  for (int i = 0; i < element.childCount(); ++i) {
    addSummaryRows(sheet, columns, rows, *element.child(i), level + 1);
  }
}

class FeeRows {
 public:
  explicit FeeRows(records::Project& project)
      : project_(project), table_(makeFeeItemTable()), groups_(project), items_(project) {
    // The page puts the caption of its group behind the unit; here all groups are one table.
    domain::DisplayRow& header = *table_->getHeader();
    for (int i = 0; i < header.columnCount(); ++i) {
      std::string& title = header.column(i)->field->displayName;
      for (const auto& [with, without] : {std::pair("，）", "）"), std::pair("（）", "")}) {
        const auto found = title.find(with);
        if (found != std::string::npos) title.replace(found, std::string(with).size(), without);
      }
    }
  }

  app::Sheet sheet() {
    app::Sheet sheet;
    sheet.name = "间接费用";
    const Columns columns(*table_, keys::IFNumber);
    columns.describe(sheet, keys::IFName);
    for (app::SheetColumn& column : sheet.columns) {
      if (column.key == keys::IFName) column.width = 215;
    }
    proxy::ElementGroup& tops = *groups_.getRoot();
    for (int i = 0; i < tops.size(); ++i) addGroup(sheet, columns, *tops.member(i), 0);
    sheet.totals = moneyRow(sheet, {}, "合计", project_.feeBudget(), project_.feeTotal());
    return sheet;
  }

 private:
  app::SheetRow moneyRow(const app::Sheet& sheet, const std::string& code, const std::string& name,
                         const Decimal& budget, const Decimal& cost) const {
    app::SheetRow row;
    for (const app::SheetColumn& column : sheet.columns) {
      app::SheetCell cell;
      const auto put = [&cell](const Decimal& money) {
        cell.value = money.toDouble();
        cell.places = costing::MoneyPlaces;
      };
      if (column.key == keys::IFCode && !code.empty()) cell.value = code;
      if (column.key == keys::IFName) cell.value = name;
      if (column.key == keys::IFBudgetAmount) put(budget);
      if (column.key == keys::IFCostAmount) put(cost);
      if (column.key == keys::IFDifference) put(budget - cost);
      cell.bold = true;
      row.cells.push_back(std::move(cell));
    }
    return row;
  }

  void addGroup(app::Sheet& sheet, const Columns& columns, proxy::Element& element, int level) {
    const records::IndirectFeeGroup& group = *IndirectFeeLeftOperator::groupOf(&element);
    std::string name = group.name;
    if (group.unitWork != nullptr) name += "（" + group.unitWork->name + "）";
    app::SheetRow row =
        moneyRow(sheet, group.code, name, project_.feeBudget(group), project_.feeTotal(group));
    row.level = level;
    for (app::SheetCell& cell : row.cells) cell.background = GroupFill;
    sheet.rows.push_back(std::move(row));
    items_.setParentElement(&element);
    const proxy::ElementGroup& items = *items_.getRoot();
    for (int i = 0; i < items.size(); ++i) {
      sheet.rows.push_back(columns.row(items_, *items.member(i), level + 1));
    }
    for (int i = 0; i < element.childCount(); ++i) {
      addGroup(sheet, columns, *element.child(i), level + 1);
    }
  }

  records::Project& project_;
  std::unique_ptr<domain::DisplayTable> table_;
  IndirectFeeLeftOperator groups_;
  IndirectFeeRightOperator items_;
};

}  // namespace

app::Sheet summarySheet(const records::SummaryLine& total, records::SummaryKind kind) {
  app::Sheet sheet;
  sheet.name = records::nameOf(kind);
  const auto table = makeFeeSummaryTable();
  const Columns columns(*table, {});
  columns.describe(sheet, summary_keys::Name);
  FeeSummaryOperator rows;
  rows.replace(total);
  const proxy::ElementGroup& tops = *rows.getRoot();
  const int last = tops.size() - 1;  // the total
  for (int i = 0; i < last; ++i) addSummaryRows(sheet, columns, rows, *tops.member(i), 0);
  sheet.totals = columns.row(rows, *tops.member(last), 0);
  return sheet;
}

app::Sheet feeSheet(records::Project& project) {
  return FeeRows(project).sheet();
}

}  // namespace operators
