#pragma once

#include <functional>
#include <string>

#include "host/bwidgets/dialog.h"
#include "host/domain/sub_engineering_operator.h"
#include "qce_export.h"

class QLabel;
class QTableWidget;

namespace gui {

/// Edits the lines of remark and expression whose sum is the quantity of a bill (工程量明细).
///
/// Each expression is worked out while it is typed; one that has no value is named with its line,
/// and the dialog stays open. Lines without any text are dropped. The lines are handed over when
/// the user confirms them and they differ from those at the start; while the receiver refuses them,
/// the dialog stays open.
class QCE_EXPORT QuantityDetailDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  /// The value of an expression; false, and what is wrong, where it has none.
  using Evaluate = std::function<bool(const std::string& expression, double& value, std::string&)>;
  /// Takes the lines; false refuses them, and the user has been told why.
  using Apply = std::function<bool(const domain::QuantityLines& lines)>;

  /// `bill` names the bill, `unit` is that of the quantity; both are shown.
  QuantityDetailDialog(const QString& bill, const QString& unit, const domain::QuantityLines& lines,
                       Evaluate evaluate, Apply apply, QWidget* parent = nullptr);
  ~QuantityDetailDialog() override;

  domain::QuantityLines lines() const;
  void accept() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void addLine(const domain::QuantityLine& line);
  void insertLine();
  void removeLine();
  void recompute();

  QString unit_;
  domain::QuantityLines before_;
  Evaluate evaluate_;
  Apply apply_;
  QTableWidget* table_ = nullptr;
  QLabel* sum_ = nullptr;
};

}  // namespace gui
