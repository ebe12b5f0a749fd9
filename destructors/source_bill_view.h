#pragma once

#include <vector>

#include "host/abst/qce/destructors/des_res_item_controller.h"
#include "host/bwidgets/widget.h"
#include "qce_export.h"

class QLabel;
class QTreeWidget;

namespace gui::qce::destructors {

/// The bills that a resource item comes from, the current one named above the list.
class QCE_EXPORT DesSourceBillView : public bwidgets::Widget {
  Q_OBJECT

 public:
  using Bills = std::vector<abst::qce::destructors::SourceBill>;

  explicit DesSourceBillView(QWidget* parent = nullptr);
  ~DesSourceBillView() override;

  /// The first becomes current.
  void setBills(const Bills& bills);
  /// Null when there is none.
  const abst::qce::destructors::SourceBill* currentBill() const;

  /// "当前清单：" and the first of the bills, with the number of the others.
  static QString caption(const Bills& bills);

 signals:
  void currentBillChanged();

 private:
  void showCurrent();

  Bills bills_;
  QLabel* label_;
  QTreeWidget* list_;
};

}  // namespace gui::qce::destructors
