#include "benchmarks/bill_tree.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "benchmarks/rows.h"
#include "engineering/filter_model.h"
#include "engineering/model.h"
#include "host/domain/field_keys.h"
#include "host/gui/tree_grid_view.h"
#include "workbench/operators/sub_engineering_operator.h"
#include "workbench/records/project.h"
#include "workbench/records/project_builder.h"

namespace bench {
namespace {

constexpr std::size_t BudgetItems = 9;  // of a bill
constexpr std::size_t Bills = 100;      // of a section
constexpr std::size_t Sections = 10;    // of a unit work
const std::string NamePart = "钢";
const std::string FeaturePart = "DN12";

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Makes the filter look at all that may be shown. Below a bill stand resources, with nothing below
// them: the look at their bill has decided about them.
int countShown(const gui::qce::QCESubEngineeringFilterModelImpl& model, const QModelIndex& parent) {
  int count = model.rowCount(parent);
  const proxy::Element* above = model.getInternalData(parent);
  if (dynamic_cast<const records::Bill*>(above) != nullptr) return count;
  for (int row = 0, rows = count; row < rows; ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    if (model.hasChildren(index)) count += countShown(model, index);
  }
  return count;
}

}  // namespace

struct BillTree::Parts {
  Parts() : op(project), table(operators::makeSubEngineeringTable()), shown(&model) {}

  records::Project project;
  operators::SubEngineeringOperator op;
  std::unique_ptr<domain::DisplayTable> table;
  gui::qce::QCESubEngineeringModelImpl model;
  gui::qce::QCESubEngineeringFilterModelImpl shown;

  // How many texts hold what is looked for in them.
  int matches(proxy::Element& row) const {
    const auto holds = [&](const std::string& key, const std::string& part) {
      const std::string* text = op.peekText(&row, key, domain::DisplayRole);
      return text->find(part) != std::string::npos ? 1 : 0;
    };
    int found =
        holds(domain::keys::SEName, NamePart) + holds(domain::keys::SEProjFeatures, FeaturePart);
    for (int i = 0; i < row.childCount(); ++i) found += matches(*row.child(i));
    return found;
  }
};

BillTree::BillTree(std::size_t rows) : parts_(std::make_unique<Parts>()) {
  const Rows texts(rows, 50);
  records::Project& project = parts_->project;
  records::ProjectBuilder builder(project);
  std::size_t made = 0;
  const auto next = [&](records::Text& code, records::Text& name, records::Text& features,
                        records::Text& unit) {
    const std::size_t row = made++;
    const std::string all[] = {texts.text(row, 1), texts.text(row, 2), texts.text(row, 3),
                               texts.text(row, 4)};
    project.texts.intern({all[0], all[1], all[2], all[3]}, code, name, features, unit);
  };
  records::StructureNode& single =
      builder.addNode(nullptr, 0, records::StructureKind::SingleProject);
  while (made < rows) {
    records::StructureNode& work = builder.addNode(&single, 0, records::StructureKind::UnitWork);
    for (std::size_t s = 0; s < Sections && made < rows; ++s) {
      records::StructureNode& section = builder.addNode(&work, 0, records::StructureKind::Section);
      for (std::size_t b = 0; b < Bills && made < rows; ++b) {
        records::Bill& bill = builder.addBill(section, 0);
        next(bill.code, bill.name, bill.features, bill.unit);
        for (std::size_t i = 0; i < BudgetItems && made < rows; ++i) {
          records::BudgetItem& item = builder.addBudgetItem(bill, 0);
          next(item.code, item.name, item.spec, item.unit);
        }
      }
    }
  }
  parts_->model.setDisplayTable(parts_->table.get());
  parts_->model.setOperator(&parts_->op);
  std::vector<std::string> conditions = {"", "", NamePart, FeaturePart, ""};
  parts_->shown.setFilterField(conditions);
  parts_->shown.setShowChildren(true);
  parts_->shown.setShowSibling(true);
}

BillTree::~BillTree() = default;

double BillTree::filter() {
  parts_->shown.setIsFilterByCondition(false);
  countShown(parts_->shown, {});  // a view has asked for all rows before
  return seconds([this] {
    parts_->shown.setIsFilterByCondition(true);
    benchmark::DoNotOptimize(countShown(parts_->shown, {}));
  });
}

double BillTree::scan() {
  return seconds([this] {
    int found = 0;
    records::Group& top = parts_->project.structure();
    for (int i = 0; i < top.size(); ++i) found += parts_->matches(*top.member(i));
    benchmark::DoNotOptimize(found);
  });
}

double BillTree::expand() {
  parts_->shown.setIsFilterByCondition(true);
  gui::TreeGridView grid;
  grid.setModel(&parts_->shown);
  grid.resize(1000, 600);
  grid.show();
  const double time = seconds([&grid] {
    grid.expandAll();
    grid.doItemsLayout();
  });
  return time * 1000 / countShown(parts_->shown, {});
}

}  // namespace bench
