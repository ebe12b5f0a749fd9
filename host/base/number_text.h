#pragma once

#include <optional>
#include <string>

#include "contract_export.h"

namespace base {

// Decimal text of a double, never in exponent form, with "." as the decimal point.
//
// The digits are those of the shortest decimal that reads back as `value`, rounded half away from
// zero to `precision` digits after the point; so 2.675 at precision 2 gives 2.68, as on paper.
// Without a precision all digits of that shortest decimal are shown. A negative precision counts
// as 0. A value that rounds to zero has no sign. Infinities and NaN give an empty text.

/// 1234.5 at 2: "1234.50".
QCE_CONTRACT_EXPORT std::string ToPlainString(double value, std::optional<int> precision = {});

/// 1234.5 at 2: "1234.5"; 1234 at 2: "1234".
QCE_CONTRACT_EXPORT std::string ToPlainStringWithStripTrailingZeros(
    double value, std::optional<int> precision = {});

/// 1234.5 at 2: "1,234.50".
QCE_CONTRACT_EXPORT std::string ToThousandthsString(double value,
                                                    std::optional<int> precision = {});

/// 1234.5 at 2: "1,234.5".
QCE_CONTRACT_EXPORT std::string ToThousandthsStringWithStripTrailingZeros(
    double value, std::optional<int> precision = {});

/// Appends to `out` what the function of these wishes would return; for callers that format cell
/// after cell and keep the room.
QCE_CONTRACT_EXPORT void AppendNumber(std::string& out, double value, std::optional<int> precision,
                                      bool stripTrailingZeros, bool thousandths);

/// The number that `text` starts with, as `atof` reads it but independent of the locale: leading
/// blanks are skipped, what follows the number is ignored, no number gives 0.
QCE_CONTRACT_EXPORT double ParseNumberPrefix(const std::string& text);

}  // namespace base
