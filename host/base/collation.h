#pragma once

#include <string>

#include "contract_export.h"

namespace base {

/// Compares two UTF-8 texts in Chinese pinyin order: negative when `a` sorts first, 0 when they
/// sort alike, positive when `b` does.
QCE_CONTRACT_EXPORT int ALargeB(const std::string& a, const std::string& b);

/// Bytes whose plain order (`<` of std::string) is the order of ALargeB; for sorts that would
/// otherwise compare each text many times.
QCE_CONTRACT_EXPORT std::string CollationKey(const std::string& text);

}  // namespace base
