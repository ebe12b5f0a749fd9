#pragma once

#include <QString>
#include <unordered_set>

#include "workbench/records/project.h"

class QWidget;

namespace shell {

/// Hears, as long as it lives, which records change, and leads to them afterwards: a step that is
/// taken back far from where the user is would else happen out of sight.
class ChangedRows : public records::Observer {
 public:
  /// The project must outlive it.
  explicit ChangedRows(records::Project& project);
  ~ChangedRows() override;
  ChangedRows(const ChangedRows&) = delete;
  ChangedRows& operator=(const ChangedRows&) = delete;

  /// Makes a row of a shown grid below `page` current that stands for a record that has changed,
  /// and scrolls to it: the current row where it is one, else the first. The column is the one that
  /// `step`, the name of what was done, names; else the current one. False without such a row.
  bool show(const QWidget& page, const QString& step) const;

  void itemChanged(records::ResourceItem& item) override;
  void billChanged(records::Bill& bill) override;
  void aboutToSwap(records::ResourceGroup& group, int upper) override;
  void feeChanged(records::IndirectFeeItem& item) override;
  void aboutToInsertFee(records::IndirectFeeGroup& group, int row) override;
  void feeInserted() override;
  void subcontractChanged(records::Subcontract& entry) override;
  void aboutToInsertSubcontract(int row) override;
  void subcontractInserted() override;
  void aboutToMoveSubcontract(int from, int to) override;

 private:
  records::Project& project_;
  std::unordered_set<std::int64_t> ids_;  // a page's own row has the id of its record
  records::IndirectFeeGroup* group_ = nullptr;
  int row_ = 0;
};

}  // namespace shell
