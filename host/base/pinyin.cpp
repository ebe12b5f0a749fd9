#include "host/base/pinyin.h"

#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <memory>
#include <unordered_map>

#include "host/base/log.h"

namespace base {
namespace {

const icu::Transliterator* latin() {
  static const std::unique_ptr<icu::Transliterator> instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Transliterator> made(icu::Transliterator::createInstance(
        "Han-Latin; Latin-ASCII; Lower", UTRANS_FORWARD, status));
    if (U_FAILURE(status)) {
      LogError("no Han-Latin transliteration in ICU; search matches plain text only");
      made.reset();
    }
    return made;
  }();
  return instance.get();
}

// One character is transliterated once per run: a search asks for the same few hundred again and
// again.
char initial(UChar32 c) {
  static std::unordered_map<UChar32, char> known;
  const auto found = known.find(c);
  if (found != known.end()) return found->second;
  icu::UnicodeString text(c);
  if (const icu::Transliterator* t = latin()) t->transliterate(text);
  const UChar32 first = text.isEmpty() ? 0 : u_tolower(text.char32At(0));
  const bool keep = (first >= 'a' && first <= 'z') || (first >= '0' && first <= '9');
  return known[c] = keep ? static_cast<char>(first) : '\0';
}

}  // namespace

std::string PinyinInitials(const std::string& text) {
  const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(text);
  std::string initials;
  for (int32_t i = 0; i < wide.length(); i = wide.moveIndex32(i, 1)) {
    if (const char c = initial(wide.char32At(i))) initials += c;
  }
  return initials;
}

}  // namespace base
