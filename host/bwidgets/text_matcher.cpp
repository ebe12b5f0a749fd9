#include "host/bwidgets/text_matcher.h"

#include <algorithm>

#include "host/base/pinyin.h"

namespace bwidgets {

TextMatcher::TextMatcher(const QString& wish) : wish_(wish.trimmed()) {
  // One letter would match the initials of nearly every text.
  const bool initials = wish_.size() > 1 && std::all_of(wish_.cbegin(), wish_.cend(), [](QChar c) {
                          return c.unicode() < 128 && c.isLetterOrNumber();
                        });
  if (initials) initials_ = wish_.toLower().toStdString();
}

bool TextMatcher::matches(const QString& text) const {
  if (wish_.isEmpty() || text.isEmpty()) return false;
  if (text.contains(wish_, Qt::CaseInsensitive)) return true;
  if (initials_.empty()) return false;
  const bool chinese =
      std::any_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() > 0x2e00; });
  return chinese && base::PinyinInitials(text.toStdString()).find(initials_) != std::string::npos;
}

}  // namespace bwidgets
