#include "engineering/indirect_fee_right_model.h"

#include <stdexcept>

#include "host/domain/qce/indirect_fee_right_operator.h"

namespace gui::qce {

namespace {

constexpr int FirstWithCaptionInside = 4;
constexpr int FirstFormatted = 8;
constexpr std::size_t LastCharacter = 3;  // bytes of a Chinese one

}  // namespace

using Operator = domain::qce::QCEIndirectFeeRightOperator;

void QCEIndirectFeeRightModelImpl::setParentElement(proxy::Element* group) {
  beginResetModel();
  if (auto* op = dynamic_cast<Operator*>(getOperator())) op->setParentElement(group);
  endResetModel();
}

void QCEIndirectFeeRightModelImpl::setCaption(const std::string& caption) {
  if (caption == caption_) return;
  caption_ = caption;
  const int columns = columnCount();
  if (columns > FirstWithCaptionInside) {
    emit headerDataChanged(Qt::Horizontal, FirstWithCaptionInside, columns - 1);
  }
}

QVariant QCEIndirectFeeRightModelImpl::headerData(int section, Qt::Orientation orientation,
                                                  int role) const {
  QVariant plain = TViewModel::headerData(section, orientation, role);
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole ||
      section < FirstWithCaptionInside) {
    return plain;
  }
  std::string name = plain.toString().toStdString();
  if (name.empty()) return plain;
  if (section < FirstFormatted) {
    if (name.size() < LastCharacter) {
      throw std::out_of_range("a fee column's header is too short for the caption: " + name);
    }
    return QString::fromStdString(name.insert(name.size() - LastCharacter, caption_));
  }
  const auto* op = dynamic_cast<const Operator*>(getOperator());
  return op != nullptr ? QString::fromStdString(op->formatHeader(caption_, name)) : plain;
}

}  // namespace gui::qce
