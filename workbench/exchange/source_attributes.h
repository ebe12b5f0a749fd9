#pragma once

#include <QString>
#include <QXmlStreamReader>
#include <array>
#include <optional>
#include <string>

#include "workbench/costing/decimal.h"
#include "workbench/exchange/source_reader.h"

namespace exchange {

/// Thrown inside the reader when a file is refused: the place of the fault, from 1, and why.
struct Refusal {
  qint64 line = 0;
  qint64 column = 0;
  QString reason;
};

/// An element of the format with its Chinese noun for messages.
struct ElementName {
  const char* tag;
  const char* noun;
};

/// What a figure may be: below `limit`, with at most `places` after the point.
struct NumberRule {
  const char* limit;
  int places;
  int wholeDigits;  ///< a figure with more of them before the point is beyond the limit
};

struct TextRule {
  bool required = true;  ///< there, and not blank
  int maximum = SourceBounds::TextCharacters;
  bool lines = false;  ///< may hold line breaks
};

constexpr TextRule Required{};
constexpr TextRule Optional{false};
constexpr TextRule RequiredCode{true, SourceBounds::CodeCharacters};
constexpr TextRule OptionalCode{false, SourceBounds::CodeCharacters};

/// A text as a message shows it: cut short where it is long.
QString clipped(const QString& value);

/// The attributes of the element that an XML reader stands on. Each is asked for by its name and
/// its Chinese noun; `finish` refuses the ones that nobody asked for. Every refusal is thrown.
class Attributes {
 public:
  Attributes(const QXmlStreamReader& xml, const ElementName& element, qint64 line, qint64 column);

  /// Letters, digits, points, hyphens and underscores.
  std::string id();
  std::string string(const char* name, const char* noun, const TextRule& rule = Required);
  std::optional<costing::Decimal> number(const char* name, const char* noun, const NumberRule& rule,
                                         bool required = true);
  costing::Decimal requiredNumber(const char* name, const char* noun, const NumberRule& rule) {
    return *number(name, noun, rule);
  }
  /// "true" or "false"; false when absent.
  bool flag(const char* name, const char* noun);
  /// Refuses the attribute if it is there.
  void forbid(const char* name, const char* noun);
  void finish() const;

  /// The element as a message names it: its noun, code and name.
  QString where() const;
  [[noreturn]] void refuse(const char* name, const char* noun, const QString& what) const;

 private:
  const QXmlStreamAttribute* take(const char* name, const char* noun, bool required);

  const QXmlStreamAttributes attributes_;
  const ElementName& element_;
  const qint64 line_;
  const qint64 column_;
  quint32 taken_ = 0;  // a bit an attribute
};

}  // namespace exchange
