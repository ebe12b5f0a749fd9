#include "pooling/res_item_bill_delegate.h"

#include <QLineEdit>
#include <algorithm>

#include "host/domain/field_keys.h"
#include "host/domain/item_role.h"

namespace gui::qce {
namespace {

bool takesExpression(const QModelIndex& index) {
  namespace keys = domain::keys;
  const std::string key = index.data(domain::FieldKeyRole).toString().toStdString();
  return key == keys::SEContent || key == keys::RIExcludedTaxFee || key == keys::BRIBillUnitPrice;
}

}  // namespace

QWidget* QCEResItemBillDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                              const QModelIndex& index) const {
  QWidget* editor = StyledItemDelegate::createEditor(parent, option, index);
  auto* line = takesExpression(index) ? qobject_cast<QLineEdit*>(editor) : nullptr;
  if (line != nullptr) {
    line->setValidator(nullptr);
    line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    line->setToolTip("可输入数字或计算式，如 12*(1+3%)");
  }
  return editor;
}

void QCEResItemBillDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                          const QModelIndex& index) const {
  const auto* line = qobject_cast<const QLineEdit*>(editor);
  if (line == nullptr || !takesExpression(index)) {
    StyledItemDelegate::setModelData(editor, model, index);
  } else if (line->isModified()) {
    model->setData(index, line->text().trimmed(), Qt::EditRole);
  }
}

QSize QCEResItemBillDelegate::sizeHint(const QStyleOptionViewItem& option,
                                       const QModelIndex& index) const {
  QSize size = StyledItemDelegate::sizeHint(option, index);
  if (!resizeState_) {
    const int line = option.fontMetrics.height();
    size.setHeight(line + std::max(4, line / 4));
  }
  return size;
}

}  // namespace gui::qce
