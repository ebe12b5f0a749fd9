#pragma once

#include <vector>

#include "host/bwidgets/dialog.h"
#include "qce_export.h"

namespace abst {
class BaseModel;
}
namespace bwidgets {
class TableView;
}
namespace proxy {
class Element;
}

namespace gui::qce::destructors {

/// The modal dialog that adds subcontract entries from the base list. It chooses rows; making
/// entries of them is its caller's. A double click, and Return with rows selected, choose them.
class QCE_EXPORT DesSetSubcontractAddQCEBaseViewImpl : public bwidgets::Dialog {
  Q_OBJECT

 public:
  explicit DesSetSubcontractAddQCEBaseViewImpl(QWidget* parent = nullptr);
  ~DesSetSubcontractAddQCEBaseViewImpl() override;

  /// The base list: a QAbstractItemModel too, or nothing happens. Not owned.
  void setModel(abst::BaseModel* model);
  /// Opens the dialog and answers whether rows were chosen.
  bool showAddQCEBaseDialog();
  /// The rows that were chosen last, from top to bottom.
  const std::vector<proxy::Element*>& chosenElements() const { return chosen_; }

  void accept() override;

  bwidgets::TableView* table() const { return table_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void chooseRow(const QModelIndex& row);

  bwidgets::TableView* table_ = nullptr;
  QDialogButtonBox* buttons_ = nullptr;
  std::vector<proxy::Element*> chosen_;
};

}  // namespace gui::qce::destructors
