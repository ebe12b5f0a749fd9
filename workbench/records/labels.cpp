#include "workbench/records/labels.h"

namespace records {
namespace {

std::string quoted(const char* what, Text code, Text name) {
  return what + ("“" + code.str()) + (code.empty() ? "" : " ") + name.str() + "”";
}

}  // namespace

std::string label(const ResourceItem& item) {
  return quoted("工料机", item.code(), item.name());
}

std::string label(const Bill& bill) {
  return quoted("清单", bill.code, bill.name);
}

std::string label(const SubcontractData& entry) {
  return quoted("分包", entry.code, entry.name);
}

}  // namespace records
