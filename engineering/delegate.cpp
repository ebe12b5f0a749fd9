#include "engineering/delegate.h"

#include "host/domain/field_keys.h"

namespace gui {

QCESubEngineeringDelegate::QCESubEngineeringDelegate(QObject* parent)
    : SubEngineeringDelegate(parent) {}

std::string QCESubEngineeringDelegate::GetCodeField() const {
  return domain::keys::SECode;
}
std::string QCESubEngineeringDelegate::GetNameField() const {
  return domain::keys::SEName;
}
std::string QCESubEngineeringDelegate::GetCalcExprField() const {
  return domain::keys::SECalcExpr;
}
std::string QCESubEngineeringDelegate::GetComplexField() const {
  return domain::keys::SEProjFeatures;
}

}  // namespace gui
