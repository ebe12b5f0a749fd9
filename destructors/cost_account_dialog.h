#pragma once

#include <vector>

#include "host/abst/qce/destructors/des_res_item_controller.h"
#include "host/bwidgets/dialog.h"
#include "qce_export.h"

class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace gui::qce::destructors {

/// Asks for a cost account: the tree of accounts with a line that narrows it by code, name or
/// pinyin initials. A double click or Enter chooses. exec() answers 1 when one was chosen.
class QCE_EXPORT DesCostAccountDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  using Entries = std::vector<abst::qce::destructors::CostAccountEntry>;

  /// `caption` says what the account is for. Starts on `current`; null is the row for none.
  DesCostAccountDialog(const QString& caption, const Entries& accounts,
                       const proxy::Element* current, QWidget* parent = nullptr);
  ~DesCostAccountDialog() override;

  /// The chosen account; null when none shall be set.
  proxy::Element* account() const;

  void accept() override;

 protected:
  /// Up and Down walk through the tree while the line has the keyboard.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void narrow(const QString& wish);
  /// Whether a row that is shown is current.
  bool hasChoice() const;

  QLineEdit* filter_;
  QTreeWidget* tree_;
  QPushButton* okButton_;
  std::vector<proxy::Element*> accounts_;  // by the number that a row keeps
};

}  // namespace gui::qce::destructors
