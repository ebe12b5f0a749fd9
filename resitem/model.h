#pragma once

#include <string>

#include "framework/instances.h"
#include "qce_export.h"

namespace domain::qce {
class QCEResItemOperator;
}

namespace gui::qce {

/// The resource items of a cost project as an item model. What goes beyond a cell is passed on to
/// the domain::qce::QCEResItemOperator that the model was given; with an operator of another kind
/// these operations do nothing.
///
/// An accepted or refused edit is announced once more, without a role, since what an item shows in
/// other roles (marks, tool tip) may follow from any of its fields. The unit price excluding tax
/// and the cost account are not: their edits are announced by the host's own refresh.
class QCE_EXPORT QCEResItemModelImpl : public gui::TViewModel<abst::qce::QCEResItemModel> {
 public:
  QCEResItemModelImpl() = default;

  void setSubProject(proxy::Element* subProject) override;
  void rebuildGroup() override;
  std::string getHeadName(int column) const override;
  bool getComment(proxy::Element* item, std::string& out) const override;
  bool setComment(proxy::Element* item, const std::string& comment) override;
  void setExcludeTaxPrice(proxy::Element* item, double price) override;

  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 private:
  domain::qce::QCEResItemOperator* getResItemOperator() const;
};

}  // namespace gui::qce
