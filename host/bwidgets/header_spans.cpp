#include "host/bwidgets/header_spans.h"

#include <algorithm>

namespace bwidgets {

std::vector<HeaderSpan> headerSpans(const std::vector<HeaderColumn>& columns, int frozen) {
  std::vector<HeaderSpan> spans;
  int left = 0;
  int lastGroup = -1;  // of the visible column before
  for (int visual = 0; visual < static_cast<int>(columns.size()); ++visual) {
    const HeaderColumn& column = columns[static_cast<std::size_t>(visual)];
    if (column.width <= 0) continue;
    const bool crosses = !spans.empty() && spans.back().last < frozen && visual >= frozen;
    if (column.group >= 0 && column.group == lastGroup && !crosses) {
      spans.back().last = visual;
      spans.back().width += column.width;
    } else if (column.group >= 0) {
      spans.push_back({column.group, visual, visual, left, column.width});
    }
    lastGroup = column.group;
    left += column.width;
  }
  return spans;
}

int frozenColumnsThatFit(const std::vector<HeaderColumn>& columns, int wanted, int room) {
  const int count = std::min(wanted, static_cast<int>(columns.size()));
  int width = 0;
  for (int visual = 0; visual < count; ++visual) {
    width += columns[static_cast<std::size_t>(visual)].width;
    if (width * 4 > room * 3) return visual;
  }
  return std::max(count, 0);
}

}  // namespace bwidgets
