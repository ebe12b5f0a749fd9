#include "benchmarks/ours.h"

#include <QCoreApplication>
#include <array>
#include <chrono>
#include <cmath>

#include "host/domain/field_keys.h"
#include "resitem/filter_model.h"
#include "resitem/model.h"
#include "workbench/operators/res_item_operator.h"
#include "workbench/records/project.h"
#include "workbench/records/project_builder.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

costing::Decimal cents(double value) {
  return costing::Decimal::fromDigits(std::llround(value * 100), 2);
}

// Ten of the page's columns, the five numbers with two decimals and thousands separators.
void describeColumns(domain::DisplayTable& table) {
  using namespace domain;
  DisplayRow& header = *table.getHeader();
  for (const std::string* key :
       {&keys::CostAccount, &keys::BRICode, &keys::BRIName, &keys::BRISpec, &keys::BRIUnit}) {
    header.addColumn(*key, DataField());
  }
  for (const std::string* key :
       {&keys::BRIAmount, &keys::BRIExcludedTaxFee, &keys::BRIExcludedTaxTotalCost,
        &keys::BRIIncludedTaxFee, &keys::BRIIncludedTaxTotalCost}) {
    DataField field;
    field.type = FloatingPointField;
    field.precision = 2;
    field.thousandsSeparators = true;
    header.addColumn(*key, field);
  }
}

}  // namespace

struct Ours::Parts {
  Parts() : op(project) {}

  records::Project project;
  domain::DisplayTable table;
  operators::ResItemOperator op;
  gui::qce::QCEResItemModelImpl model;
  std::unique_ptr<gui::qce::QCEResItemFilterModelImpl> filter;
  Clock::time_point sortBegan;
  double sortTook = 0;
  bool sorted = false;
};

Ours::Ours(const Rows& rows) : parts_(std::make_unique<Parts>()) {
  records::Project& project = parts_->project;
  records::ProjectBuilder builder(project);
  records::StructureNode& work = builder.addNode(nullptr, 0, records::StructureKind::UnitWork);
  std::unordered_map<std::string, records::CostAccount*> accounts;
  // As a reader of files does: the texts of several rows at once.
  constexpr std::size_t Lot = 8;
  std::array<std::string, 4 * Lot> read;
  std::array<std::string_view, 4 * Lot> views;
  std::array<records::Text, 4 * Lot> texts;
  for (std::size_t row = 0; row < rows.size(); ++row) {
    records::ResourceItemData item;
    const std::string accountName = rows.text(row, 0);
    records::CostAccount*& account = accounts[accountName];
    if (account == nullptr) account = &builder.addAccount(nullptr, 0, "", accountName);
    item.account = account;
    const std::size_t inLot = row % Lot;
    if (inLot == 0) {
      for (std::size_t i = 0; i < Lot && row + i < rows.size(); ++i) {
        for (std::size_t c = 0; c < 4; ++c) {
          read[4 * i + c] = rows.text(row + i, static_cast<int>(c) + 1);
          views[4 * i + c] = read[4 * i + c];
        }
      }
      project.texts.intern(views.data(), texts.data(), views.size());
    }
    item.code = texts[4 * inLot];
    item.name = texts[4 * inLot + 1];
    item.spec = texts[4 * inLot + 2];
    item.unit = texts[4 * inLot + 3];
    item.quantity = cents(rows.number(row, 0));
    item.price = cents(rows.number(row, 1));
    item.taxRate = 13;
    builder.addItem(work, item);
  }
  describeColumns(parts_->table);
  parts_->op.rebuildGroup();
  parts_->model.setDisplayTable(&parts_->table);
  parts_->model.setOperator(&parts_->op);
  parts_->filter = std::make_unique<gui::qce::QCEResItemFilterModelImpl>(&parts_->model);
  parts_->filter->connectLayoutAboutToBeChanged(
      [parts = parts_.get()] { parts->sortBegan = Clock::now(); });
  parts_->filter->connectLayoutChanged([parts = parts_.get()] {
    parts->sortTook = std::chrono::duration<double>(Clock::now() - parts->sortBegan).count();
    parts->sorted = true;
  });
}

Ours::~Ours() = default;

QAbstractItemModel& Ours::filter() {
  return *parts_->filter;
}

void Ours::filterByCondition(const std::string& name, const std::string& specification) {
  std::vector<std::string> keywords = {"", "", name, specification, ""};
  parts_->filter->setFilterField(keywords);
  parts_->filter->setIsFilterByCondition(true);
}

void Ours::cancelCondition() {
  parts_->filter->setIsFilterByCondition(false);
}

double Ours::sort(int column, Qt::SortOrder order) {
  // A displayed thousands separator is no number to the comparison: the quantity sorts without.
  domain::DataField* quantity = parts_->table.getHeader()->column(domain::keys::BRIAmount)->field;
  quantity->thousandsSeparators = false;
  parts_->sorted = false;
  parts_->filter->sort(column, order);
  while (!parts_->sorted) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  quantity->thousandsSeparators = true;
  return parts_->sortTook;
}

}  // namespace bench
