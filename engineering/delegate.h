#pragma once

#include "host/presentation/sub_engineering_delegate.h"
#include "qce_export.h"

namespace gui {

/// The delegate of the module's sub-engineering page: the editors of gui::SubEngineeringDelegate on
/// the module's columns.
class QCE_EXPORT QCESubEngineeringDelegate : public SubEngineeringDelegate {
  Q_OBJECT

 public:
  explicit QCESubEngineeringDelegate(QObject* parent = nullptr);

 protected:
  std::string GetCodeField() const override;
  std::string GetNameField() const override;
  std::string GetCalcExprField() const override;
  std::string GetComplexField() const override;
};

}  // namespace gui
