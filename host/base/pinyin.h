#pragma once

#include <string>

#include "contract_export.h"

namespace base {

/// The pinyin initials of `text` (UTF-8), one letter or digit a character, lower case, everything
/// else left out: 螺纹钢 HRB400 gives "lwghrb400". For search boxes.
QCE_CONTRACT_EXPORT std::string PinyinInitials(const std::string& text);

}  // namespace base
