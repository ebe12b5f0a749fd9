#pragma once

#include <QString>
#include <string>

#include "host_widgets_export.h"

namespace bwidgets {

/// What a user types to find a text: a part of it, whatever the case, or the pinyin initials of a
/// part of it ("lwg" finds 螺纹钢). An empty wish matches nothing.
class QCE_HOST_WIDGETS_EXPORT TextMatcher {
 public:
  explicit TextMatcher(const QString& wish = {});

  bool isEmpty() const { return wish_.isEmpty(); }
  const QString& wish() const { return wish_; }
  bool matches(const QString& text) const;

 private:
  QString wish_;
  std::string initials_;  // empty when the wish cannot be initials
};

}  // namespace bwidgets
