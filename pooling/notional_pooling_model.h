#pragma once

#include <QVariant>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "framework/instances.h"
#include "framework/row_follower.h"
#include "qce_export.h"

namespace domain::qce {
class QCENotionalPoolingOperator;
}

namespace gui::qce {

/// Budget resource items to pool, as an item model. It holds what the user checks and the
/// quantities that they type; all else comes from the domain::qce::QCENotionalPoolingOperator that
/// the model was given. Nothing is written to the host before collectToQCEResItem().
///
/// Checks and quantities belong to a row: they follow it when rows move, go with it when it goes,
/// and are forgotten by a reset and by cleanUpResources().
class QCE_EXPORT QCENotionalPoolingModelImpl
    : public gui::TViewModel<abst::qce::QCENotionalPoolingModel> {
 public:
  QCENotionalPoolingModelImpl();

  /// A check box is checked with all rows below it. A quantity is taken when it is no more than can
  /// be pooled, else the module's channel tells the user and the cell keeps what it has. Other
  /// cells cannot be edited here.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

  void setSubEngineerBills(std::vector<proxy::Element*>& bills) override;
  void setCurrentQCEGLJItem(proxy::Element* item) override;
  std::string getCurrentQCEResItemType() override;
  void collectToQCEResItem() override;
  void usedToOtherBills(proxy::Element* bill) override;
  void cleanUpResources() override;

 protected:
  /// Checks or unchecks the rows below `element`, then the element itself; announces each row that
  /// changes. Rows above it stay as they are.
  virtual void clickedStat(proxy::Element* element, bool checked);
  /// Puts the checked rows and their shown quantities into `quantities`.
  virtual void getClickedElement(std::map<proxy::Element*, double>& quantities);
  domain::qce::QCENotionalPoolingOperator* getNPOperator() const;

 private:
  void click(proxy::Element* element, bool checked, int column);
  bool setQuantity(const QModelIndex& index, const QVariant& value);
  bool hasKey(const QModelIndex& index, const std::string& key) const;

  std::set<QModelIndex> checked_;
  std::map<QModelIndex, QVariant> quantities_;
  gui::RowFollower follower_;
};

}  // namespace gui::qce
