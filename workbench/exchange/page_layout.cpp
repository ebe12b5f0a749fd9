#include "workbench/exchange/page_layout.h"

#include <algorithm>
#include <cstddef>

namespace exchange {

std::vector<double> columnWidths(const std::vector<ColumnNeed>& needs, double room, int wide) {
  std::vector<double> widths;
  std::vector<std::size_t> lacking(needs.size());
  widths.reserve(needs.size());
  double spare = room;
  for (std::size_t i = 0; i < needs.size(); ++i) {
    widths.push_back(needs[i].least);
    spare -= needs[i].least;
    lacking[i] = i;
  }
  if (spare < 0) {
    for (double& width : widths) width *= room / (room - spare);
    return widths;
  }
  const auto lack = [&needs](std::size_t i) { return needs[i].natural - needs[i].least; };
  std::sort(lacking.begin(), lacking.end(),
            [&lack](std::size_t a, std::size_t b) { return lack(a) < lack(b); });
  for (std::size_t done = 0; done < lacking.size(); ++done) {
    const double share = spare / static_cast<double>(lacking.size() - done);
    const double given = std::min(share, lack(lacking[done]));
    widths[lacking[done]] += given;
    spare -= given;
  }
  if (wide >= 0 && wide < static_cast<int>(widths.size())) {
    widths[static_cast<std::size_t>(wide)] += spare;
  }
  return widths;
}

std::vector<int> pageBreaks(const std::vector<PrintedRow>& rows, double firstRoom, double room) {
  std::vector<int> starts{0};
  const int count = static_cast<int>(rows.size());
  const auto row = [&rows](int number) -> const PrintedRow& {
    return rows[static_cast<std::size_t>(number)];
  };
  double left = firstRoom;
  for (int next = 0; next < count; ++next) {
    const int first = starts.back();
    if (row(next).height <= left || next == first) {
      left -= row(next).height;
      continue;
    }
    int start = next;
    if (start == count - 1 && start - 1 > first) --start;
    while (start - 1 > first && row(start).level > row(start - 1).level) --start;
    // A page of nothing but headings, each below the one before it, has to be cut somewhere.
    if (start - 1 == first && row(start).level > row(first).level) start = next;
    starts.push_back(start);
    left = room;
    next = start - 1;
  }
  return starts;
}

int carryOver(const std::vector<PrintedRow>& rows, int first, double room) {
  constexpr int Least = 3;
  const int count = static_cast<int>(rows.size());
  double height = 0;
  for (int start = count - 1; start > first; --start) {
    const PrintedRow& row = rows[static_cast<std::size_t>(start)];
    height += row.height;
    if (height > room) return -1;
    const bool parted = row.level > rows[static_cast<std::size_t>(start) - 1].level;
    if (count - start >= Least && !parted) return start;
  }
  return -1;
}

}  // namespace exchange
