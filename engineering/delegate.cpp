#include "engineering/delegate.h"

#include <QComboBox>
#include <QCompleter>

#include "host/domain/field_keys.h"
#include "host/domain/item_role.h"

namespace gui {

QCESubEngineeringDelegate::QCESubEngineeringDelegate(QObject* parent)
    : SubEngineeringDelegate(parent) {}

QWidget* QCESubEngineeringDelegate::createEditor(QWidget* parent,
                                                 const QStyleOptionViewItem& option,
                                                 const QModelIndex& index) const {
  const QStringList choices = index.data(domain::ChoicesRole).toStringList();
  if (choices.isEmpty()) return SubEngineeringDelegate::createEditor(parent, option, index);
  // A part of the text finds the entry: there may be hundreds of accounts.
  auto* box = new QComboBox(parent);
  box->setFrame(false);
  box->setEditable(true);
  box->setInsertPolicy(QComboBox::NoInsert);
  box->addItems(choices);
  box->completer()->setCompletionMode(QCompleter::PopupCompletion);
  box->completer()->setFilterMode(Qt::MatchContains);
  return box;
}

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
