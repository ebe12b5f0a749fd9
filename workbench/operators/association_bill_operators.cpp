#include "workbench/operators/association_bill_operators.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include "host/app/scoped_undo.h"
#include "host/domain/field_keys.h"
#include "workbench/operators/columns.h"
#include "workbench/operators/refusal.h"

namespace operators {
namespace {

using domain::Value;
namespace keys = domain::keys;

/// A unit work or a section.
class SectionRow : public records::Branch {
 public:
  explicit SectionRow(const records::StructureNode& ofNode) : Branch(ofNode.id()), node(ofNode) {}
  const records::StructureNode& node;
};

const SectionRow* sectionRow(const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(SectionRow)
             ? static_cast<const SectionRow*>(element)
             : nullptr;
}

/// The rows of a node: itself, below it the sections that hold bills and, where `makeBill` makes
/// rows of them, the bills. Null when the node holds no bill.
template <class MakeBill>
scoped_refptr<records::Record> makeRows(records::StructureNode& node, MakeBill makeBill) {
  scoped_refptr<SectionRow> row(new SectionRow(node));
  bool holdsBills = false;
  for (int i = 0; i < node.childCount(); ++i) {
    scoped_refptr<records::Record> below;
    if (auto* section = dynamic_cast<records::StructureNode*>(node.child(i))) {
      below = makeRows(*section, makeBill);
      holdsBills = holdsBills || below != nullptr;
    } else if (auto* bill = dynamic_cast<records::Bill*>(node.child(i))) {
      below = makeBill(*bill);
      holdsBills = true;
    }
    if (below) row->rows().append(std::move(below));
  }
  if (!holdsBills) return {};
  return row;
}

bool sectionValue(const SectionRow& section, const std::string& key, int role, Value& out) {
  switch (role) {
    case domain::DisplayRole:
      if (key != keys::SEName && key != keys::SECode) return false;
      domain::AssignText(out, key == keys::SEName ? section.node.name : section.node.code);
      return true;
    case domain::FontRole:
      out = base::Font{true, "Noto Sans CJK SC"};
      return true;
    case domain::BackgroundRole:
      out = section.node.kind == records::StructureKind::Section ? base::Color{245, 248, 252}
                                                                 : base::Color{226, 236, 247};
      return true;
    default:
      return false;
  }
}

}  // namespace

std::unique_ptr<domain::DisplayTable> makeAssociationSectionTable() {
  return makeTable("QCE_AssociationBillLeft",
                   {{keys::SEName, "单位工程 / 分部", domain::StringField, 220}});
}

std::unique_ptr<domain::DisplayTable> makeAssociationBillTable() {
  using namespace domain;
  return makeTable("QCE_AssociationBillRight",
                   {{keys::SECode, "项目编码", StringField, 185},
                    {keys::SEName, "项目名称", StringField, 190},
                    {keys::BRIAssociation, "已关联", StringField, 60},
                    {keys::SEUnit, "单位", StringField, 55},
                    {keys::SEAmount, "工程量", FloatingPointField, 95},
                    {keys::SEProjFeatures, "项目特征", StringField, 260}});
}

// ---------------------------------------------------------------------------------------------
// Sections

AssociationSectionOperator::AssociationSectionOperator() : root_(new records::Group) {}
AssociationSectionOperator::~AssociationSectionOperator() = default;

proxy::ElementGroup* AssociationSectionOperator::getRoot() {
  return root_.get();
}

bool AssociationSectionOperator::getValue(const proxy::Element* element, const std::string& key,
                                          int role, Value& out) const {
  const SectionRow* section = sectionRow(element);
  // One column of names needs no shades.
  return section != nullptr && role != domain::BackgroundRole &&
         sectionValue(*section, key, role, out);
}

void AssociationSectionOperator::setSubProject(proxy::Element* subProject) {
  subProject_ = dynamic_cast<records::StructureNode*>(subProject);
  reload();
}

void AssociationSectionOperator::reload() {
  root_.reset(new records::Group);
  if (subProject_ == nullptr) return;
  const auto noRow = [](records::Bill&) { return scoped_refptr<records::Record>(); };
  if (auto row = makeRows(*subProject_, noRow)) root_->rows().append(std::move(row));
}

// ---------------------------------------------------------------------------------------------
// Bills: rows

class AssociationBillOperator::BillRow : public records::Record {
 public:
  explicit BillRow(records::Bill& ofBill) : Record(ofBill.id()), bill(ofBill) {}
  records::Bill& bill;
};

AssociationBillOperator::AssociationBillOperator(records::Project& project)
    : project_(project), root_(new records::Group) {}
AssociationBillOperator::~AssociationBillOperator() = default;

const AssociationBillOperator::BillRow* AssociationBillOperator::billRow(
    const proxy::Element* element) {
  return element != nullptr && typeid(*element) == typeid(BillRow)
             ? static_cast<const BillRow*>(element)
             : nullptr;
}

proxy::ElementGroup* AssociationBillOperator::getRoot() {
  return root_.get();
}

void AssociationBillOperator::setBaseResItem(const Elements& items) {
  items_.clear();
  for (proxy::Element* element : items) {
    if (auto* item = dynamic_cast<records::ResourceItem*>(element)) items_.emplace_back(item);
  }
  readAssociations();
}

void AssociationBillOperator::setSubProject(proxy::Element* subProject) {
  subProject_ = dynamic_cast<records::StructureNode*>(subProject);
  reload();
}

void AssociationBillOperator::reload() {
  readAssociations();
  root_.reset(new records::Group);
  if (subProject_ == nullptr) return;
  const auto billRow = [](records::Bill& bill) {
    return scoped_refptr<records::Record>(new BillRow(bill));
  };
  if (auto row = makeRows(*subProject_, billRow)) root_->rows().append(std::move(row));
}

void AssociationBillOperator::readAssociations() {
  associations_.clear();
  bool allUnified = true;
  for (const auto& item : items_) {
    for (const records::Bill* bill : project_.associatedBills(*item)) {
      ++associations_[bill];
      allUnified = allUnified && project_.terms(*item, *bill).summary;
    }
  }
  unified_ = allUnified && !associations_.empty();
}

std::size_t AssociationBillOperator::associations(const records::Bill& bill) const {
  const auto found = associations_.find(&bill);
  return found == associations_.end() ? 0 : found->second;
}

// ---------------------------------------------------------------------------------------------
// Bills: cells

const std::string* AssociationBillOperator::peekText(const proxy::Element* element,
                                                     const std::string& key, int role) const {
  const BillRow* row = billRow(element);
  if (row == nullptr || (role != domain::DisplayRole && role != domain::EditRole)) return nullptr;
  if (key == keys::SECode) return &row->bill.code.str();
  if (key == keys::SEName) return &row->bill.name.str();
  if (key == keys::SEProjFeatures) return &row->bill.features.str();
  if (key == keys::SEUnit) return &row->bill.unit.str();
  return nullptr;
}

bool AssociationBillOperator::getValue(const proxy::Element* element, const std::string& key,
                                       int role, Value& out) const {
  if (const SectionRow* section = sectionRow(element)) {
    return sectionValue(*section, key, role, out);
  }
  const BillRow* row = billRow(element);
  if (row == nullptr) return false;
  const bool shown = role == domain::DisplayRole || role == domain::EditRole;
  if (const std::string* text = peekText(element, key, role)) {
    domain::AssignText(out, *text);
    return true;
  }
  if (shown && key == keys::SEAmount) {
    out = row->bill.quantity.toDouble();
    return true;
  }
  if (key != keys::BRIAssociation) return false;
  const std::size_t with = associations(row->bill);
  if (shown) {
    domain::AssignText(out, with == 0 ? "" : with == items_.size() ? "√" : "部分");
    return true;
  }
  if (role == domain::ToolTipRole && with > 0 && with < items_.size()) {
    domain::AssignText(out, "所选 " + std::to_string(items_.size()) + " 项工料机中有 " +
                                std::to_string(with) +
                                " 项已关联此清单；勾选后全部关联，不勾选则保持不变");
    return true;
  }
  return false;
}

// The check box stands with the code.
bool AssociationBillOperator::isCheckable(const proxy::Element* element,
                                          const std::string& key) const {
  return element != nullptr && key == keys::SECode;
}

std::optional<int> AssociationBillOperator::getPrecision(const proxy::Element* row,
                                                         const std::string& key) const {
  const BillRow* bill = billRow(row);
  if (bill == nullptr || key != keys::SEAmount) return {};
  int places = 0;
  bill->bill.quantity.value().significantDigits(places);
  if (places <= costing::MaxQuantityPlaces) return {};
  return places;
}

// ---------------------------------------------------------------------------------------------
// Bills: tests

bool AssociationBillOperator::isBill(const proxy::Element* row) const {
  return billRow(row) != nullptr;
}

bool AssociationBillOperator::isAssociated(const proxy::Element* bill) const {
  const BillRow* row = billRow(bill);
  return row != nullptr && !items_.empty() && associations(row->bill) == items_.size();
}

bool AssociationBillOperator::isExcluded(const proxy::Element* row, const std::string& text) const {
  if (text.empty()) return false;
  const BillRow* found = billRow(row);
  if (found == nullptr) return true;
  if (text != matched_) {
    matched_ = text;
    matcher_ = bwidgets::TextMatcher(QString::fromStdString(text));
    matches_.clear();
  }
  if (matcher_.isEmpty()) return false;
  // Initials take time, and a tree that filters by its branches asks for a bill on every floor.
  const records::Bill& bill = found->bill;
  const auto known = matches_.find(&bill);
  if (known != matches_.end()) return !known->second;
  const auto holds = [this](records::Text part) {
    return matcher_.matches(QString::fromStdString(part.str()));
  };
  return !(matches_[&bill] = holds(bill.code) || holds(bill.name) || holds(bill.features));
}

bool AssociationBillOperator::isInSection(const proxy::Element* row,
                                          const proxy::Element* section) const {
  while (row != nullptr && section != nullptr && row->id() != section->id()) row = row->parent();
  return row != nullptr && section != nullptr;
}

// ---------------------------------------------------------------------------------------------
// Bills: association

int AssociationBillOperator::pooledCount(const Elements& bills) const {
  return static_cast<int>(std::count_if(bills.begin(), bills.end(), [this](proxy::Element* row) {
    const BillRow* found = billRow(row);
    if (found == nullptr) return false;
    for (int i = 0; i < found->bill.childCount(); ++i) {
      const auto& budget = static_cast<const records::BudgetItem&>(*found->bill.child(i));
      for (const auto& item : items_) {
        if (!project_.pooled(budget, *item).isZero()) return true;
      }
    }
    return false;
  }));
}

bool AssociationBillOperator::associate(const Elements& bills, const Elements& cancelled,
                                        bool unify) {
  const auto billOf = [](proxy::Element* row) -> records::Bill* {
    const BillRow* found = billRow(row);
    return found != nullptr ? &found->bill : nullptr;
  };
  std::string refusal;
  {
    app::ScopedUndo undo("关联清单");
    try {
      for (const auto& item : items_) {
        for (proxy::Element* row : cancelled) {
          if (records::Bill* bill = billOf(row)) project_.disassociate(*item, *bill);
        }
        if (unify != unified_) {
          for (records::Bill* bill : project_.associatedBills(*item)) {
            if (associations(*bill) != items_.size()) continue;
            records::LineTerms terms = project_.terms(*item, *bill);
            terms.summary = unify;
            project_.setTerms(*item, *bill, terms);
          }
        }
        for (proxy::Element* row : bills) {
          records::Bill* bill = billOf(row);
          // One that this item has already keeps its terms.
          if (bill != nullptr && !project_.terms(*item, *bill).associated) {
            project_.associate(*item, *bill, unify);
          }
        }
      }
    } catch (const records::Refusal& refused) {
      refusal = refused.what();
    } catch (const std::overflow_error&) {
      refusal = "关联清单后的合价超出可计算的范围，本次关联已全部取消。请检查工料机的单价和数量。";
    }
    if (!refusal.empty()) undo.abandon();
  }
  if (!refusal.empty()) refuse(refusal);
  // A step that could not be stored was taken back, too; the user has been told.
  readAssociations();
  const auto associated = [this](proxy::Element* row) { return isAssociated(row); };
  return refusal.empty() && std::all_of(bills.begin(), bills.end(), associated) &&
         std::none_of(cancelled.begin(), cancelled.end(), associated);
}

}  // namespace operators
