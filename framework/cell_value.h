#pragma once

#include <QVariant>
#include <optional>
#include <string>

#include "host/domain/data_field.h"
#include "host/domain/value.h"
#include "qce_export.h"

Q_DECLARE_METATYPE(scoped_refptr<base::Object>)

// How the values of the toolkit-free side and those of Qt turn into each other. The bridge
// templates only plumb; what can be said without their parameter stands here.
namespace gui {

/// A Qt value of the same content; std::monostate gives an invalid QVariant. An object travels as
/// a QVariant of scoped_refptr<base::Object>, which keeps its count.
/// @throws std::bad_variant_access for a valueless variant.
QCE_EXPORT QVariant toQVariant(const domain::Value& value);

/// The text of a number as its field wants it: precision, trailing zeros, thousands separators.
QCE_EXPORT std::string formatNumber(const domain::DataField& field, double value);

/// The same as formatNumber, ready to be shown; takes the short way where both lead to one text.
QCE_EXPORT QVariant numberText(const domain::DataField& field, double value);

/// A UTF-8 text as a QString in a variant, for cells that are read by the million.
QCE_EXPORT QVariant textCell(const std::string& text);

/// 0, 1 or 2 (Qt::CheckState) for what an operator answered for the check-state role.
QCE_EXPORT int toCheckState(const QVariant& value);

/// The number in an operator's value, when it holds or spells one.
QCE_EXPORT std::optional<double> toNumber(const domain::Value& value);

/// `value` as a field of `type` takes it: text, bool, int or double; std::monostate for a number
/// that is none (it clears the cell). Empty for an unknown type code.
QCE_EXPORT std::optional<domain::Value> toFieldValue(int type, const QVariant& value);

}  // namespace gui
