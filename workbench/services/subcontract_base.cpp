#include "workbench/services/subcontract_base.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

static void initBaseResources() {
  Q_INIT_RESOURCE(templates);
}

namespace services {
namespace {

using costing::Decimal;
using Json = nlohmann::json;

constexpr qint64 kLargest = qint64(4) << 20;  // bytes; a list is some ten kilobytes
constexpr char Entries[] = "条目";

[[noreturn]] void fail(const std::string& place, const std::string& what) {
  throw SubcontractBaseError("分包基础库的“" + place + "”" + what);
}

template <class Names>
std::string listed(const Names& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : "、") + std::string(name);
  return list;
}

std::string textOf(const Json& entry, const char* key, const std::string& place) {
  const auto found = entry.find(key);
  if (found == entry.end()) return {};
  if (!found->is_string()) fail(place + "." + key, "应为文字，请加上引号。");
  return found->get<std::string>();
}

Decimal numberOf(const Json& entry, const char* key, const std::string& place, const Decimal& most,
                 int places) {
  const auto found = entry.find(key);
  if (found == entry.end()) return {};
  std::optional<Decimal> number;
  if (found->is_number()) number = Decimal::fromDouble(found->get<double>());
  if (found->is_string()) number = Decimal::parse(found->get<std::string>());
  if (!number || number->isNegative() || *number > most || *number != number->rounded(places)) {
    fail(place + "." + key, "应为 0 到 " + most.toString() + " 之间、最多 " +
                                std::to_string(places) + " 位小数的数，请改正。");
  }
  return *number;
}

records::MeteringMethod meteringOf(const std::string& text, const std::string& place) {
  std::vector<std::string> names;
  for (int i = 0; i < records::MeteringMethodCount; ++i) {
    const auto method = static_cast<records::MeteringMethod>(i);
    names.push_back(records::nameOf(method));
    if (text.empty() || names.back() == text) return method;
  }
  fail(place + ".计量方式", "的值“" + text + "”未知，请改为下列之一：" + listed(names) + "。");
}

SubcontractBaseEntry readEntry(const Json& object, const std::string& place) {
  static const std::vector<const char*> known{"编码",     "名称",     "项目特征", "单位",
                                              "合同类型", "计量方式", "定额含量", "不含税单价",
                                              "税率",     "成本科目", "适用区域", "备注"};
  if (!object.is_object()) {
    fail(place, "应为一个条目，例如 {\"名称\": \"钢筋工程劳务\", \"单位\": \"t\"}。");
  }
  for (const auto& [key, value] : object.items()) {
    // Keys that mean nothing are mostly misspelt ones.
    if (std::find(known.begin(), known.end(), key) == known.end()) {
      std::string at = place;
      fail(at.append(".").append(key), "不是可用的键，请改为下列之一：" + listed(known) + "。");
    }
  }
  SubcontractBaseEntry entry;
  entry.code = textOf(object, "编码", place);
  entry.name = textOf(object, "名称", place);
  entry.features = textOf(object, "项目特征", place);
  entry.unit = textOf(object, "单位", place);
  entry.contractType = textOf(object, "合同类型", place);
  entry.metering = meteringOf(textOf(object, "计量方式", place), place);
  entry.contentQuota = textOf(object, "定额含量", place);
  entry.applicableArea = textOf(object, "适用区域", place);
  entry.remark = textOf(object, "备注", place);
  entry.account = textOf(object, "成本科目", place);
  entry.price = numberOf(object, "不含税单价", place, 1000000000, costing::UnitPricePlaces);
  entry.taxRate = numberOf(object, "税率", place, 100, 4);
  if (entry.name.empty()) fail(place + ".名称", "缺失，请补上分包的名称。");
  const std::vector<std::string>& types = records::contractTypes();
  if (!entry.contractType.empty() &&
      std::find(types.begin(), types.end(), entry.contractType) == types.end()) {
    fail(place + ".合同类型", "的值“" + entry.contractType + "”未知，请改为下列之一：" +
                                  listed(types) + "；没有合同类型时请删去这个键。");
  }
  return entry;
}

std::vector<SubcontractBaseEntry> builtIn() {
  initBaseResources();
  QFile file(QStringLiteral(":/qce/subcontracts/分包基础库.json"));
  file.open(QIODevice::ReadOnly);
  return parseSubcontractBase(file.readAll().toStdString());
}

}  // namespace

std::vector<SubcontractBaseEntry> parseSubcontractBase(std::string_view json) {
  Json root;
  try {
    root = Json::parse(json);
  } catch (const Json::parse_error& error) {
    const std::size_t end = std::min(error.byte > 0 ? error.byte - 1 : 0, json.size());
    const auto line = 1 + std::count(json.begin(), json.begin() + static_cast<long>(end), '\n');
    throw SubcontractBaseError("分包基础库第 " + std::to_string(line) +
                               " 行不是正确的 JSON，请检查引号、逗号和括号。");
  }
  const auto list = root.is_object() ? root.find(Entries) : root.end();
  if (!root.is_object() || list == root.end() || !list->is_array()) {
    fail(Entries, "缺失或不是列表，请补上，例如 {\"条目\": [{\"名称\": \"钢筋工程劳务\"}]}。");
  }
  std::vector<SubcontractBaseEntry> entries;
  for (const Json& object : *list) {
    entries.push_back(
        readEntry(object, std::string(Entries) + "[" + std::to_string(entries.size() + 1) + "]"));
  }
  return entries;
}

std::vector<SubcontractBaseEntry> loadSubcontractBase(const QString& templateDirectory,
                                                      QString* problem) {
  const QString path = templateDirectory + QStringLiteral("/分包基础库/分包基础库.json");
  QFile file(path);
  if (templateDirectory.isEmpty() || !file.exists()) return builtIn();
  QString why;
  if (!file.open(QIODevice::ReadOnly)) {
    why = QStringLiteral("不能读取：%1。请检查该文件的权限。").arg(file.errorString());
  } else if (file.size() > kLargest) {
    why = QStringLiteral("超过 4 MB，不像是分包基础库。请换用正确的文件。");
  } else {
    try {
      return parseSubcontractBase(file.readAll().toStdString());
    } catch (const SubcontractBaseError& error) {
      why = QString::fromUtf8(error.what());
    }
  }
  if (problem != nullptr) {
    *problem = QStringLiteral("%1\n\n文件：%2\n暂用内置的分包基础库。")
                   .arg(why, QDir::toNativeSeparators(path));
  }
  return builtIn();
}

}  // namespace services
