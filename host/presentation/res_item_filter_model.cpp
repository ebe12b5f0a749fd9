#include "host/presentation/res_item_filter_model.h"

#include <QString>
#include <utility>

#include "host/domain/field_keys.h"

namespace gui {
namespace {

constexpr const char* EveryType = "所有";

template <class T>
bool assign(T& member, const T& value) {
  if (member == value) return false;
  member = value;
  return true;
}

std::string shownText(const domain::Operator& op, const proxy::Element* element,
                      const std::string& key) {
  domain::Value value;
  if (!op.getValue(element, key, domain::DisplayRole, value)) return {};
  const auto* text = std::get_if<std::string>(&value);
  return text != nullptr ? *text : std::string();
}

}  // namespace

ResItemTextFilter::~ResItemTextFilter() = default;

bool ResItemFilterState::setText(const std::string& text) {
  return assign(text_, text);
}

bool ResItemFilterState::setType(const std::string& type) {
  return assign(type_, type == EveryType ? std::string() : type);
}

bool ResItemFilterState::setHiddenColumns(const std::set<std::string>& keys) {
  return assign(hidden_, keys);
}

bool ResItemFilterState::acceptsRow(const domain::Operator* op,
                                    const proxy::Element* element) const {
  if (op == nullptr) return true;
  if (!type_.empty() && shownText(*op, element, domain::keys::BRIType) != type_) return false;
  if (text_.empty()) return true;
  const QString wanted = QString::fromStdString(text_);
  for (const std::string* key :
       {&domain::keys::BRICode, &domain::keys::BRIName, &domain::keys::BRISpec}) {
    const QString text = QString::fromStdString(shownText(*op, element, *key));
    if (text.contains(wanted, Qt::CaseInsensitive)) return true;
  }
  return false;
}

}  // namespace gui
