#include "workbench/records/change.h"

#include <array>
#include <set>

namespace records {

const std::string& nameOf(ItemField field) {
  static const std::array<std::string, 13> names = {
      "成本科目", "编码",       "名称", "规格型号", "不含税单价", "税率", "甲供标记",
      "暂估标记", "可调价标记", "批注", "数量",     "关联到成本", "单位"};
  return names[static_cast<std::size_t>(field)];
}

namespace {

std::string describe(const SetTerms& change) {
  const bool before = change.before && change.before->associated;
  const bool after = change.after && change.after->associated;
  return before == after ? "修改清单设置" : after ? "关联清单" : "取消关联清单";
}

std::string describe(const SetField& change) {
  if (change.field != ItemField::Linked) return "修改" + nameOf(change.field);
  return std::get<bool>(change.after) ? "关联到成本" : "取消关联到成本";
}

std::string describe(const SetBill& change) {
  const BillData& before = change.before;
  const BillData& after = change.after;
  if (!(before.quantityLines == after.quantityLines)) return "修改工程量明细";
  if (before.expression != after.expression) return "修改成本工程量";
  if (before.code != after.code) return "修改清单编码";
  if (before.name != after.name) return "修改清单名称";
  if (before.features != after.features) return "修改项目特征";
  if (before.unit != after.unit) return "修改清单单位";
  if (before.type != after.type) return "修改清单类型";
  return before.account != after.account ? "修改清单成本科目" : "修改清单备注";
}

}  // namespace

std::string describe(const ChangeSet& changes) {
  std::set<std::string> kinds;
  for (const Change& change : changes) {
    if (const auto* set = std::get_if<SetField>(&change)) {
      kinds.insert(describe(*set));
    } else if (std::holds_alternative<AddItem>(change)) {
      kinds.insert("新增工料机");
    } else if (std::holds_alternative<RemoveItem>(change)) {
      kinds.insert("删除工料机");
    } else if (const auto* pooling = std::get_if<SetPooling>(&change)) {
      kinds.insert(pooling->before < pooling->after ? "归集到成本" : "取消归集");
    } else if (const auto* terms = std::get_if<SetTerms>(&change)) {
      kinds.insert(describe(*terms));
    } else if (const auto* bill = std::get_if<SetBill>(&change)) {
      kinds.insert(describe(*bill));
    } else if (std::holds_alternative<SetFee>(change)) {
      kinds.insert("修改间接费");
    } else if (std::holds_alternative<AddFee>(change)) {
      kinds.insert("新增间接费");
    } else if (std::holds_alternative<RemoveFee>(change)) {
      kinds.insert("删除间接费");
    } else if (const auto* collection = std::get_if<SetCollection>(&change)) {
      kinds.insert(collection->after != nullptr ? "设置归集" : "取消归集");
    } else if (const auto* entry = std::get_if<SetSubcontract>(&change)) {
      kinds.insert(entry->before.metering != entry->after.metering ? "修改计量方式" : "修改分包");
    } else if (std::holds_alternative<AddSubcontract>(change)) {
      kinds.insert("新增分包");
    } else if (std::holds_alternative<RemoveSubcontract>(change)) {
      kinds.insert("删除分包");
    } else if (std::holds_alternative<MoveSubcontract>(change)) {
      kinds.insert("移动分包");
    } else if (std::holds_alternative<AssignBill>(change)) {
      kinds.insert("分包关联清单");
    } else if (std::holds_alternative<UnassignBill>(change)) {
      kinds.insert("分包取消关联清单");
    } else if (std::holds_alternative<SetTaxation>(change)) {
      kinds.insert("修改计税方法");
    } else {
      kinds.insert("移动工料机");
    }
  }
  // What comes along with them by itself.
  if (kinds.count("归集到成本") != 0) kinds.erase("关联清单");
  for (const char* whole : {"取消关联清单", "删除分包", "删除工料机"}) {
    if (kinds.count(whole) != 0) kinds.erase("取消归集");
  }
  return kinds.size() == 1 ? *kinds.begin() : "编辑";
}

}  // namespace records
