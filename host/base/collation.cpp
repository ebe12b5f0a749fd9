#include "host/base/collation.h"

#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <memory>

#include "host/base/log.h"

namespace base {
namespace {

const icu::Collator* collator() {
  static const std::unique_ptr<icu::Collator> instance = [] {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> made(
        icu::Collator::createInstance(icu::Locale("zh@collation=pinyin"), status));
    if (U_FAILURE(status) || !made) {
      LogError("no pinyin collation in ICU; texts sort by their bytes");
      made.reset();
    }
    return made;
  }();
  return instance.get();
}

}  // namespace

int ALargeB(const std::string& a, const std::string& b) {
  const icu::Collator* order = collator();
  UErrorCode status = U_ZERO_ERROR;
  if (order == nullptr) return a.compare(b);
  return static_cast<int>(order->compareUTF8(a, b, status));
}

std::string CollationKey(const std::string& text) {
  const icu::Collator* order = collator();
  if (order == nullptr) return text;
  const icu::UnicodeString wide = icu::UnicodeString::fromUTF8(text);
  uint8_t small[256];
  const int32_t size = order->getSortKey(wide, small, sizeof small);
  if (size <= static_cast<int32_t>(sizeof small)) {
    return std::string(reinterpret_cast<const char*>(small),
                       static_cast<std::size_t>(size > 0 ? size - 1 : 0));
  }
  std::string key(static_cast<std::size_t>(size), '\0');
  order->getSortKey(wide, reinterpret_cast<uint8_t*>(key.data()), size);
  key.pop_back();  // ICU ends a key with a zero byte
  return key;
}

}  // namespace base
