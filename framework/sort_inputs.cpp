#include "framework/sort_inputs.h"

#include <QVariant>

#include "host/base/collation.h"
#include "host/domain/data_field.h"
#include "host/proxy/element.h"

namespace gui {

void SortInputs::end() {
  running_ = false;
  current_ = Siblings();
}

const SortInputs::Cell& SortInputs::cell(const QModelIndex& index, Reader reader) {
  if (!running_) {
    Cell& cell = loose_[nextLoose_];
    nextLoose_ = 1 - nextLoose_;
    reader(index, cell);
    return cell;
  }
  // Siblings are told apart by their parent element: no index of the parent has to be made.
  const auto* element = static_cast<const proxy::Element*>(index.internalPointer());
  const void* parent = element != nullptr ? element->parent() : nullptr;
  const auto row = static_cast<std::size_t>(index.row());
  if (current_.cells.empty() || current_.parent != parent || current_.reader != reader ||
      current_.column != index.column()) {
    current_ = {parent, reader, index.column(), {}};
    Q_ASSERT(index.isValid());  // a sort asks of rows that are there
    const int rows = index.model()->rowCount(index.parent());
    current_.cells.resize(static_cast<std::size_t>(rows > index.row() ? rows : index.row() + 1));
  }
  Cell& cell = current_.cells.at(row);
  if (!cell.read) {
    reader(index, cell);
    cell.read = true;
  }
  return cell;
}

void readCollationKey(const QModelIndex& index, SortInputs::Cell& cell) {
  cell.key = base::CollationKey(index.data(Qt::DisplayRole).toString().toStdString());
}

void readDisplayedNumber(const QModelIndex& index, SortInputs::Cell& cell) {
  const QVariant shown = index.data(Qt::DisplayRole);
  cell.number = shown.toDouble();
}

void readCheckState(const QModelIndex& index, SortInputs::Cell& cell) {
  cell.number = index.data(Qt::CheckStateRole).toBool() ? 1.0 : 0.0;
}

bool cellLessThan(int fieldType, const QModelIndex& left, const QModelIndex& right,
                  SortInputs& inputs) {
  switch (fieldType) {
    case domain::StringField: {
      const SortInputs::Cell& a = inputs.cell(left, readCollationKey);
      const SortInputs::Cell& b = inputs.cell(right, readCollationKey);
      return a.key < b.key;
    }
    case domain::BoolField: {
      const SortInputs::Cell& a = inputs.cell(left, readCheckState);
      const SortInputs::Cell& b = inputs.cell(right, readCheckState);
      return a.number < b.number;
    }
    case domain::IntegerField:
    case domain::FloatingPointField: {
      const SortInputs::Cell& a = inputs.cell(left, readDisplayedNumber);
      const SortInputs::Cell& b = inputs.cell(right, readDisplayedNumber);
      return a.number < b.number;
    }
    default:
      return false;
  }
}

}  // namespace gui
