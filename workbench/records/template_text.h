#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/costing/decimal.h"

namespace records {

/// A template file that cannot be used; what() is Chinese and names the line or the key, and the
/// cure.
class TemplateError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The JSON text of one kind of template file, and how its faults are told. Texts are UTF-8.
class TemplateText {
 public:
  /// `kind` is the user's name for such a file; it must outlive this.
  explicit constexpr TemplateText(const char* kind) : kind_(kind) {}

  /// @throws TemplateError
  nlohmann::json parse(std::string_view text) const;
  /// Refuses keys that mean nothing, since they are mostly misspelt ones.
  /// @throws TemplateError
  void requireKeys(const nlohmann::json& object, const std::string& place,
                   const std::vector<std::string>& known) const;
  /// @throws TemplateError
  [[noreturn]] void fail(const std::string& place, const std::string& what) const;

  /// A number, or a text that is one, from 0 to `most` with no more than `places` decimal places.
  static std::optional<costing::Decimal> number(const nlohmann::json& value,
                                                const costing::Decimal& most, int places);
  static std::string listed(const std::vector<std::string>& names);

 private:
  const char* kind_;
};

}  // namespace records
