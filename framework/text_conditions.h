#pragma once

#include <array>
#include <string>
#include <vector>

#include "host/domain/operator.h"
#include "qce_export.h"

namespace gui {

/// The texts of the condition panel, and the fields that are searched for them: the first text in
/// the first field, and so on. All have to occur, each as a plain part of what its field shows,
/// byte by byte; an empty one says nothing.
class QCE_EXPORT TextConditions {
 public:
  using Keys = std::array<const std::string*, 5>;

  /// The keys outlive the conditions.
  explicit TextConditions(const Keys& keys) : keys_(keys) {}

  void setTexts(const std::vector<std::string>& texts) { texts_ = texts; }
  /// Without an operator, fulfilled only when every text is empty.
  bool areFulfilled(const domain::Operator* op, const proxy::Element* element) const;

 private:
  Keys keys_;
  std::vector<std::string> texts_;
};

}  // namespace gui
