#pragma once

#include <string>
#include <vector>

#include "framework/base_page.h"
#include "qce_export.h"

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;

namespace abst::qce::destructors {
class DesSetSubcontractAssociationBillFilterModel;
class DesSetSubcontractView;
}  // namespace abst::qce::destructors
namespace bwidgets {
class TableView;
}
namespace proxy {
class Element;
}

namespace gui::qce::destructors {

/// The bills of the project, with those of the current subcontract entry marked. Its model
/// (setModel) is an abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel that is a
/// QAbstractItemModel too.
///
/// Space and a double click associate what is not associated and else disassociate it.
class QCE_EXPORT DesSetSubcontractAssociationBillViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesSetSubcontractAssociationBillViewImpl(QWidget* parent = nullptr);
  ~DesSetSubcontractAssociationBillViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void setAbstractView(abst::qce::destructors::DesSetSubcontractView* view);  ///< not owned

  /// The current entry, or what is associated with it, is another one. `entry` names it, empty for
  /// none.
  void refresh(const QString& entry);
  bwidgets::TableView* table() const { return table_; }
  QCheckBox* associatedOnlyBox() const { return associatedOnly_; }
  QLineEdit* filterEdit() const { return filterEdit_; }

 public slots:
  void associate();
  void disassociate();
  void toggle();

 private:
  void createActions();
  std::vector<proxy::Element*> selected(bool associated) const;
  void showContextMenu(const QPoint& at);
  void refreshCount();

  abst::qce::destructors::DesSetSubcontractView* view_ = nullptr;
  abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel* filter_ = nullptr;
  bwidgets::TableView* table_ = nullptr;
  QLabel* caption_ = nullptr;
  QCheckBox* associatedOnly_ = nullptr;
  QLineEdit* filterEdit_ = nullptr;
  QAction* associateAction_ = nullptr;
  QAction* disassociateAction_ = nullptr;
};

}  // namespace gui::qce::destructors
