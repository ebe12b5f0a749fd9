#pragma once

#include <QMenu>
#include <functional>
#include <set>
#include <string>

#include "host/domain/display_table.h"
#include "qce_export.h"

namespace gui {

/// Which columns of a table a grid shows: a check box for each. Stays open while several are
/// chosen.
class QCE_EXPORT ColumnMenu : public QMenu {
  Q_OBJECT

 public:
  /// Where the columns come from, and what a choice does. Asked when the menu opens.
  struct Columns {
    std::function<const domain::DisplayTable*()> table;  ///< null: nothing to choose from
    std::function<bool(const domain::ColumnDescriptor&)> isShown;
    std::function<void(const std::string& key, bool shown)> show;
    /// What tells the rows apart: always shown.
    std::set<std::string> fixed;
  };

  explicit ColumnMenu(Columns columns, QWidget* parent = nullptr);

 private:
  void fill();

  Columns columns_;
};

}  // namespace gui
