#pragma once

#include <vector>

#include "host_widgets_export.h"

// The arithmetic of grid headers. Columns are given in visual order, widths in pixels.
namespace bwidgets {

struct HeaderColumn {
  int width = 0;   ///< 0 for a hidden column
  int group = -1;  ///< number of the group it belongs to, -1 for none
};

/// A run of neighbouring visible columns below one caption.
struct HeaderSpan {
  int group = -1;
  int first = 0;  ///< visual number of its first visible column
  int last = 0;   ///< and of its last
  int left = 0;   ///< from the start of the first column of all
  int width = 0;

  friend bool operator==(const HeaderSpan& a, const HeaderSpan& b) {
    return a.group == b.group && a.first == b.first && a.last == b.last && a.left == b.left &&
           a.width == b.width;
  }
};

/// The captions to draw, from left to right. Hidden columns do not part a group; a foreign column
/// in between does, and so does the border after the first `frozen` columns, since the two sides
/// scroll apart.
QCE_HOST_WIDGETS_EXPORT std::vector<HeaderSpan> headerSpans(
    const std::vector<HeaderColumn>& columns, int frozen);

/// How many of the first `wanted` columns can stay in place in `room` pixels so that at least a
/// quarter of the room is left to what scrolls.
QCE_HOST_WIDGETS_EXPORT int frozenColumnsThatFit(const std::vector<HeaderColumn>& columns,
                                                 int wanted, int room);

}  // namespace bwidgets
