#pragma once

#include <QString>
#include <vector>

#include "host/app/spreadsheet.h"

namespace exchange {

/// Writes the sheets into an Office Open XML workbook (".xlsx"), replacing what is there.
///
/// A header of two levels is merged where it is; tree levels become outline levels (the deepest of
/// the eight that the format has stands for all below it), folded rows stay folded, the frozen
/// columns and the header stay in place. Numbers keep 16 digits and are shown with their places.
/// One that a spreadsheet cannot hold (not finite, or beyond 9.99e307) is an empty cell. A flag is
/// "√" or an empty cell. Texts are never taken for formulas or numbers.
///
/// Answers an empty text, or a message for the user that names the place and the cure; there is
/// then no new file, and an old one is untouched.
QString writeSpreadsheet(const std::vector<app::Sheet>& sheets, const QString& path);

}  // namespace exchange
