#pragma once

#include <QAbstractItemModel>
#include <memory>
#include <string>

#include "benchmarks/rows.h"

namespace bench {

/// The same rows in the reference host's records behind the resource-item models.
class Ours {
 public:
  explicit Ours(const Rows& rows);
  ~Ours();

  QAbstractItemModel& filter();
  void filterByCondition(const std::string& name, const std::string& specification);
  void cancelCondition();
  /// Sorts by the proxy column and answers what the sort itself took, without its delay; seconds.
  double sort(int column, Qt::SortOrder order);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace bench
