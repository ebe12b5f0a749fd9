#pragma once

#include <QMetaObject>
#include <QModelIndex>
#include <QVector>
#include <array>

#include "framework/base_page.h"
#include "qce_export.h"

class QLabel;

namespace abst::qce::destructors {
class DesSetSubcontractAssociationBillFilterModel;
class DesSetSubcontractCollectModel;
class DesSetSubcontractView;
}  // namespace abst::qce::destructors

namespace gui::qce::destructors {

class DesSetSubcontractAssociationBillViewImpl;
class DesSetSubcontractCollectViewImpl;
class DesSetSubcontractTableViewImpl;

/// The page that assigns the bills of a project to subcontracts: above the table of entries, below
/// it the collection tree and the bills of the project.
///
/// Its model (setModel) is that of the entries, an abst::qce::destructors::DesSetSubcontractModel
/// that is a QAbstractItemModel too. The models of the panes come by setCollectModel and
/// setAssociationBillModel, the host side by setAbstractView, best before the models. None is
/// owned.
///
/// The host hears of the current entry while the page is shown; what has changed meanwhile when it
/// is shown again.
class QCE_EXPORT DesSetSubcontractViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesSetSubcontractViewImpl(QWidget* parent = nullptr);
  ~DesSetSubcontractViewImpl() override;

  void setAbstractView(abst::qce::destructors::DesSetSubcontractView* view);
  void setModel(abst::BaseModel* model) override;
  void setCollectModel(abst::qce::destructors::DesSetSubcontractCollectModel* model);
  void setAssociationBillModel(
      abst::qce::destructors::DesSetSubcontractAssociationBillFilterModel* model);
  /// Makes the first entry current, unless one is.
  void activate() override;
  void deactivate() override;
  void updateView() override;
  /// An edit is complete: what is associated with the current entry may be something else.
  void refreshBills();

  DesSetSubcontractTableViewImpl* tableView() const { return table_; }
  DesSetSubcontractCollectViewImpl* collectView() const { return collect_; }
  DesSetSubcontractAssociationBillViewImpl* billView() const { return bills_; }

 public slots:
  void onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous);
  void onDataChange(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                    const QVector<int>& roles);

 protected:
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void tellCurrent(const QModelIndex& current);
  QString entryName() const;

  abst::qce::destructors::DesSetSubcontractView* view_ = nullptr;
  DesSetSubcontractTableViewImpl* table_ = nullptr;
  DesSetSubcontractCollectViewImpl* collect_ = nullptr;
  DesSetSubcontractAssociationBillViewImpl* bills_ = nullptr;
  QLabel* note_ = nullptr;
  bool noted_ = false;  // the note is about the edit that is under way
  std::array<QMetaObject::Connection, 2> connections_;
};

}  // namespace gui::qce::destructors
