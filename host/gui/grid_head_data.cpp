#include "host/gui/grid_head_data.h"

#include <algorithm>

#include "host/domain/display_table.h"

namespace gui {

void StGridHeadData::collectColumns(const domain::DisplayRow& header,
                                    const std::vector<std::string>& keys) {
  for (const std::string& key : keys) {
    if (header.columnIndex(key) >= 0) columnKeys.push_back(key);
  }
  std::stable_sort(columnKeys.begin(), columnKeys.end(),
                   [&header](const std::string& a, const std::string& b) {
                     return header.columnIndex(a) < header.columnIndex(b);
                   });
}

}  // namespace gui
