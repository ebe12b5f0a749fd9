#pragma once

#include <string>
#include <vector>

#include "host_widgets_export.h"

namespace domain {
class DisplayRow;
}

namespace gui {

/// One caption of a two-level grid header and the columns below it.
struct QCE_HOST_WIDGETS_EXPORT StGridHeadData {
  explicit StGridHeadData(std::string groupCaption) : caption(std::move(groupCaption)) {}

  /// Gathers those of `columnKeys` that `header` has, in the order of its columns.
  void collectColumns(const domain::DisplayRow& header, const std::vector<std::string>& columnKeys);

  std::string caption;                  ///< UTF-8
  std::vector<std::string> columnKeys;  ///< a view asks its model for each one's column
};

}  // namespace gui
