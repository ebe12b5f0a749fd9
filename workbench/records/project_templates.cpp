#include "workbench/records/project_templates.h"

#include <algorithm>

#include "workbench/records/project.h"
#include "workbench/records/project_builder.h"

namespace records {
namespace {

struct Account {
  const char* code;
  const char* name;
  std::optional<Category> defaultFor = {};
};

// Two digits a level: an account stands below the one whose code its own begins with.
const std::vector<Account>& commonAccounts() {
  static const std::vector<Account> accounts = {
      {"01", "人工费", Category::Labour},
      {"02", "材料费", Category::Material},
      {"0299", "其他主材", Category::MainMaterial},
      {"03", "机械费", Category::Machinery},
      {"04", "设备费", Category::Equipment},
      {"08", "措施费"},
      {"0801", "安全文明施工费"},
      {"0802", "脚手架费"},
      {"0803", "模板工程费"},
      {"0804", "垂直运输与大型机械费"},
      {"09", "间接费"},
      {"0901", "管理人员薪酬"},
      {"0902", "办公与差旅费"},
      {"0903", "临时设施费"},
      {"0904", "规费"},
      {"10", "专业分包"},
      {"11", "劳务分包"},
  };
  return accounts;
}

struct Template {
  const char* name;
  const char* key;
  std::vector<const char*> unitWorks;
  std::vector<Account> ownAccounts;
};

const std::vector<Template>& templates() {
  static const std::vector<Template> all = {
      {"房屋建筑工程",
       "building",
       {"建筑工程", "装饰工程", "给排水与采暖工程", "电气工程", "通风空调工程"},
       {{"0101", "土建人工费"},
        {"0102", "装饰人工费"},
        {"0103", "安装人工费"},
        {"0201", "钢材"},
        {"0202", "混凝土与砂浆"},
        {"0203", "周转材料"},
        {"0206", "装饰材料"}}},
      {"机电安装工程",
       "installation",
       {"给排水与采暖工程", "电气工程", "通风空调工程", "消防工程"},
       {{"0103", "安装人工费"},
        {"0208", "给排水采暖及消防材料"},
        {"0209", "电气材料"},
        {"0210", "通风空调材料"}}},
      {"市政工程",
       "municipal",
       {"道路工程", "桥涵工程", "管网工程"},
       {{"0101", "土建人工费"},
        {"0201", "钢材"},
        {"0202", "混凝土与砂浆"},
        {"0211", "沥青与路面材料"}}},
  };
  return all;
}

}  // namespace

std::vector<std::pair<std::string, std::string>> projectTemplates() {
  std::vector<std::pair<std::string, std::string>> pairs;
  pairs.reserve(templates().size());
  for (const Template& each : templates()) pairs.emplace_back(each.name, each.key);
  return pairs;
}

void fillFromTemplate(Project& project, const std::string& key) {
  const auto found = std::find_if(templates().begin(), templates().end(),
                                  [&key](const Template& each) { return key == each.key; });
  const Template& chosen = found != templates().end() ? *found : templates().front();

  ProjectBuilder builder(project);
  std::vector<Account> accounts = commonAccounts();
  accounts.insert(accounts.end(), chosen.ownAccounts.begin(), chosen.ownAccounts.end());
  std::sort(accounts.begin(), accounts.end(),
            [](const Account& a, const Account& b) { return std::string(a.code) < b.code; });
  CostAccount* top = nullptr;
  for (const Account& account : accounts) {
    const std::string code = account.code;
    CostAccount& made = builder.addAccount(code.size() > 2 ? top : nullptr, 0, code, account.name);
    made.defaultFor = account.defaultFor;
    if (code.size() == 2) top = &made;
  }

  StructureNode& single = builder.addNode(nullptr, 0, StructureKind::SingleProject);
  single.name = chosen.name;
  int number = 0;
  for (const char* name : chosen.unitWorks) {
    StructureNode& work = builder.addNode(&single, 0, StructureKind::UnitWork);
    ++number;
    work.code = (number < 10 ? "0" : "") + std::to_string(number);
    work.name = name;
  }
  // To be filled with fees of one's own.
  number = 0;
  for (const char* name : {"现场管理费", "措施费", "规费", "其他间接费"}) {
    IndirectFeeGroup& group = builder.addFeeGroup(nullptr, 0);
    group.code = "0" + std::to_string(++number);
    group.name = name;
  }
}

}  // namespace records
