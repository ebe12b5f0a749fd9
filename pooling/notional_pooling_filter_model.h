#pragma once

#include <string>
#include <typeinfo>
#include <vector>

#include "framework/instances.h"
#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui::qce {

/// Shows the budget resource items of one bill, the current associated bill; all of them while
/// there is none. Everything else is passed on to the model.
class QCE_EXPORT QCENotionalPoolingFilterModelImpl
    : public gui::TFilterViewModel<abst::qce::QCENotionalPoolingFilterModel> {
 public:
  explicit QCENotionalPoolingFilterModelImpl(abst::qce::QCENotionalPoolingModel* source);

  void setSubEngineerBills(std::vector<proxy::Element*>& bills) override;
  void setCurrentQCEGLJItem(proxy::Element* item) override;
  std::string getCurrentQCEResItemType() override;
  void collectToQCEResItem() override;
  void usedToOtherBills(proxy::Element* bill) override;
  /// Shows all rows again, too.
  void cleanUpResources() override;
  /// Filters again.
  void setCurrentSubEngBill(proxy::Element* bill) override;

 protected:
  using TFilterViewModel::filterAcceptsRow;
  bool filterAcceptsRow(proxy::Element* row) const override;

 private:
  scoped_refptr<proxy::Element> currentBill_;
  mutable const std::type_info* operatorType_ = nullptr;
};

}  // namespace gui::qce
