#include "workbench/records/change.h"

#include <array>
#include <set>

namespace records {

const std::string& nameOf(ItemField field) {
  static const std::array<std::string, 12> names = {
      "成本科目", "编码",     "名称",       "规格型号", "不含税单价", "税率",
      "甲供标记", "暂估标记", "可调价标记", "关联标记", "批注",       "数量"};
  return names[static_cast<std::size_t>(field)];
}

std::string describe(const ChangeSet& changes) {
  std::set<std::string> kinds;
  for (const Change& change : changes) {
    if (const auto* set = std::get_if<SetField>(&change)) {
      kinds.insert("修改" + nameOf(set->field));
    } else if (std::holds_alternative<AddItem>(change)) {
      kinds.insert("新增工料机");
    } else if (std::holds_alternative<RemoveItem>(change)) {
      kinds.insert("删除工料机");
    } else {
      kinds.insert("移动工料机");
    }
  }
  return kinds.size() == 1 ? *kinds.begin() : "编辑";
}

}  // namespace records
