#pragma once

#include <functional>
#include <vector>

#include "destructors/cost_account_dialog.h"
#include "destructors/source_bill_view.h"

class QComboBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace gui::qce::destructors {

/// Asks what resource items are to be collected into (设置归集): a new subcontract entry made of
/// the fields, or one that is there, whose fields are shown and stay as they are. What was typed
/// for a new one is kept while another one is looked at.
class QCE_EXPORT DesCollectionDialog : public bwidgets::Dialog {
  Q_OBJECT

 public:
  using Setting = abst::qce::destructors::CollectionSetting;
  /// Collects; false where it was refused, and the dialog then stays open.
  using Confirm = std::function<bool(const Setting&)>;

  /// What is offered. The first target is the proposal for a new entry.
  struct Offer {
    std::size_t items = 0;  ///< how many are to be collected
    std::vector<abst::qce::destructors::CollectionTarget> targets;
    DesCostAccountDialog::Entries accounts;
    DesSourceBillView::Bills bills;
    /// What a setting would do to the cost; may be empty.
    std::function<abst::qce::destructors::CollectionEffect(const Setting&)> effect;
  };

  DesCollectionDialog(Offer offer, Confirm confirm, QWidget* parent = nullptr);
  ~DesCollectionDialog() override;

  void accept() override;

 private:
  Setting setting() const;
  bool isNew(int target) const;
  void showTarget();
  void showEffect();
  void chooseAccount();
  void setAccount(proxy::Element* account);

  Offer offer_;
  Confirm confirm_;
  proxy::Element* account_ = nullptr;
  int shown_ = -1;              // target whose fields are shown
  bool featuresTyped_ = false;  // those of the new entry
  QComboBox* target_;
  QLineEdit* accountText_;
  QPushButton* accountButton_;
  QPlainTextEdit* features_;
  QLineEdit* price_;
  QLabel* metering_;
  QLabel* effect_;
  DesSourceBillView* bills_;
};

}  // namespace gui::qce::destructors
