#pragma once

#include <optional>
#include <string>

#include "host/domain/value.h"
#include "workbench/costing/decimal.h"

namespace operators {

/// Always true, for `return put(out, …);` in a getValue.
bool put(domain::Value& out, const std::string& text);
bool put(domain::Value& out, const costing::Decimal& number);

/// The exact decimal that was typed or handed over; nothing for the empty value and blank text.
/// False for what is no number.
bool readDecimal(const domain::Value& value, std::optional<costing::Decimal>& out);

/// Without the blanks and line breaks round it.
std::string trimmed(const std::string& text);

}  // namespace operators
