#include "workbench/operators/des_res_item_operator.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "host/domain/field_keys.h"
#include "host/domain/qce/destructors/des_res_item_keys.h"
#include "workbench/operators/columns.h"

namespace operators {

using costing::Decimal;
using domain::Value;
using records::ResourceGroup;
using records::ResourceItem;

namespace keys = domain::keys;

namespace {

const base::Color Collected{229, 243, 225};  // background: its cost is that of a subcontract
const base::Color Waiting{176, 96, 0};       // text: its cost counts nowhere yet
const std::string Nothing;

}  // namespace

class DesResItemOperator::Row final : public records::Record {
 public:
  explicit Row(ResourceItem& of) : Record(of.id()), item(&of) {}

  scoped_refptr<ResourceItem> item;
  mutable int bills = -1;  // how many it comes from; -1: to be counted
};

class DesResItemOperator::GroupRow final : public records::Branch {
 public:
  explicit GroupRow(ResourceGroup& of) : Branch(of.id()), group(&of) {}

  scoped_refptr<ResourceGroup> group;
  mutable std::optional<Decimal> market;  // sum of what the items below would cost
};

std::unique_ptr<domain::DisplayTable> makeDesResItemTable() {
  using namespace domain;
  return makeTable(
      "QCE_DesResItem",
      {{keys::BRIType, "类别", StringField, 50},
       {keys::BRICode, "编码", StringField, 100},
       {keys::BRIName, "名称", StringField, 170},
       {keys::BRISpec, "规格型号", StringField, 110},
       {keys::BRIUnit, "单位", StringField, 50},
       {keys::BRILinkCB, "关联成本", StringField, 64},
       {keys::BRIContract, "归集到", StringField, 130},
       {keys::CostAccount, "成本科目", StringField, 130},
       {keys::BRIAmount, "数量", FloatingPointField, 90},
       {keys::BRIExcludedTaxFee, "不含税单价（元）", FloatingPointField, 122, true},
       {keys::BRIMarketTotalCost, "不含税合价（元）", FloatingPointField, 120, true},
       {keys::BRIExcludedTaxTotalCost, "计入成本（元）", FloatingPointField, 120, true},
       {keys::BRIBudgetTotalCost, "预算合价（元）", FloatingPointField, 110, true},
       {keys::BRIBillCount, "清单数", IntegerField, 60}},
      true);
}

DesResItemOperator::DesResItemOperator(records::Project& project, ResItemOperator& items)
    : project_(project), items_(items), root_(new records::Group) {}

DesResItemOperator::~DesResItemOperator() = default;

ResourceItem* DesResItemOperator::itemOf(const proxy::Element* row) {
  const auto* found = dynamic_cast<const Row*>(row);
  return found != nullptr ? found->item.get() : nullptr;
}

proxy::Element* DesResItemOperator::rowOf(const ResourceItem& item) const {
  const auto found = rows_.find(&item);
  return found != rows_.end() ? found->second : nullptr;
}

void DesResItemOperator::forget(const ResourceItem& item) const {
  const auto found = rows_.find(&item);
  if (found == rows_.end()) return;
  found->second->bills = -1;
  for (proxy::Element* above = found->second->parent(); above != nullptr; above = above->parent()) {
    static_cast<GroupRow*>(above)->market.reset();
  }
}

void DesResItemOperator::forgetAll() const {
  for (const auto& [item, row] : rows_) forget(*item);
}

int DesResItemOperator::getItemWaitForCollectNum() const {
  return static_cast<int>(project_.itemsWaiting());
}

void DesResItemOperator::setGrouped(bool grouped) {
  grouped_ = grouped;
  rebuildGroup();
}

void DesResItemOperator::rebuildGroup() {
  root_.reset(new records::Group);
  rows_.clear();
  rows_.reserve(static_cast<std::size_t>(project_.itemCount()));
  for (const records::StructureNode* unitWork : project_.unitWorks()) {
    scoped_refptr<GroupRow> work(new GroupRow(*project_.subProject(*unitWork)));
    for (int i = 0; i < records::CategoryCount; ++i) {
      ResourceGroup* group = project_.categoryGroup(*unitWork, static_cast<records::Category>(i));
      if (group == nullptr || group->rows().size() == 0) continue;
      // In the order of the stored places, which a sorted page may not have.
      std::vector<ResourceItem*> members;
      members.reserve(static_cast<std::size_t>(group->rows().size()));
      for (int row = 0; row < group->rows().size(); ++row) {
        members.push_back(static_cast<ResourceItem*>(group->rows().at(row)));
      }
      std::stable_sort(members.begin(), members.end(), [](ResourceItem* a, ResourceItem* b) {
        return a->position() < b->position();
      });
      scoped_refptr<GroupRow> category(new GroupRow(*group));
      records::RowList& into = grouped_ ? category->rows() : root_->rows();
      for (ResourceItem* item : members) {
        scoped_refptr<Row> row(new Row(*item));
        rows_[item] = row.get();
        into.append(row);
      }
      if (grouped_) work->rows().append(category);
    }
    if (grouped_ && work->childCount() > 0) root_->rows().append(work);
  }
}

const std::string* DesResItemOperator::ownText(const ResourceItem& item,
                                               const std::string& key) const {
  static const std::string mark = "√";
  if (key == keys::BRILinkCB) return item.linked() ? &mark : &Nothing;
  if (key == keys::BRIContract) {
    return item.subcontract() != nullptr ? &item.subcontract()->name.str() : &Nothing;
  }
  return nullptr;
}

const std::string* DesResItemOperator::peekText(const proxy::Element* row, const std::string& key,
                                                int role) const {
  const ResourceItem* item = itemOf(row);
  if (item == nullptr || (role != domain::DisplayRole && role != domain::EditRole)) return nullptr;
  const std::string* own = ownText(*item, key);
  return own != nullptr ? own : items_.peekText(item, key, role);
}

bool DesResItemOperator::itemValue(const Row& row, const std::string& key, int role,
                                   Value& out) const {
  const ResourceItem& item = *row.item;
  if (role == domain::DisplayRole || role == domain::EditRole) {
    if (const std::string* text = ownText(item, key)) {
      domain::AssignText(out, *text);
      return true;
    }
    if (key == keys::BRIMarketTotalCost) {
      out = project_.amountIfCounted(item).toDouble();
      return true;
    }
    if (key == keys::BRIBillCount) {
      if (row.bills < 0) row.bills = static_cast<int>(project_.linesOf(item).size());
      out = row.bills;
      return true;
    }
  }
  const bool collected = item.subcontract() != nullptr;
  switch (role) {
    case domain::BackgroundRole:
      if (!collected) break;
      out = Collected;
      return true;
    case domain::ForegroundRole:
      if (collected || item.linked()) break;
      out = Waiting;
      return true;
    case domain::TextAlignmentRole:
      if (key != keys::BRILinkCB) break;
      out = 0x84;  // Qt::AlignCenter
      return true;
    case domain::ToolTipRole:
      if (collected) {
        domain::AssignText(
            out, "已归集到分包“" + item.subcontract()->name.str() + "”，费用由该分包计入成本");
        return true;
      }
      if (!item.linked()) {
        domain::AssignText(out, "未关联到成本，也没有归集：费用未计入成本");
        return true;
      }
      break;
    default:
      break;
  }
  return items_.getValue(&item, key, role, out);
}

bool DesResItemOperator::groupValue(const GroupRow& row, const std::string& key, int role,
                                    Value& out) const {
  const bool shown = role == domain::DisplayRole || role == domain::EditRole;
  // Font and colours are those of the whole row.
  if (!shown) return items_.getValue(row.group.get(), keys::BRIName, role, out);
  if (key == keys::BRIMarketTotalCost) {
    if (!row.market) {
      Decimal sum;
      for (int i = 0; i < row.childCount(); ++i) {
        if (const ResourceItem* item = itemOf(row.child(i))) {
          sum += project_.amountIfCounted(*item);
        } else {
          Value below;
          const auto& category = static_cast<const GroupRow&>(*row.child(i));
          groupValue(category, key, role, below);
          sum += *category.market;
        }
      }
      row.market = sum;
    }
    out = row.market->toDouble();
    return true;
  }
  if (key == keys::BRIBillCount) {
    domain::AssignText(out, Nothing);
    return true;
  }
  return items_.getValue(row.group.get(), key, domain::DisplayRole, out);
}

bool DesResItemOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                                  Value& out) const {
  if (const auto* row = dynamic_cast<const Row*>(element)) return itemValue(*row, key, role, out);
  const auto* group = dynamic_cast<const GroupRow*>(element);
  return group != nullptr && groupValue(*group, key, role, out);
}

bool DesResItemOperator::setValue(proxy::Element* row, const std::string& key, const Value& value,
                                  int role) {
  ResourceItem* item = itemOf(row);
  return item != nullptr && items_.setValue(item, key, value, role);
}

bool DesResItemOperator::isEditable(const proxy::Element* row, const std::string& key) const {
  const ResourceItem* item = itemOf(row);
  return item != nullptr && items_.isEditable(item, key);
}

}  // namespace operators
