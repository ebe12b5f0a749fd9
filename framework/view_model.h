#pragma once

#include <QAbstractItemModel>
#include <cmath>
#include <functional>
#include <list>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "framework/cell_value.h"
#include "framework/row_announcer.h"
#include "host/abst/base_model.h"
#include "host/app/scoped_undo.h"
#include "host/base/log.h"
#include "host/domain/display_table.h"
#include "host/domain/operator.h"
#include "host/gui/view_model.h"
#include "host/proxy/element.h"

namespace gui {

/// An abstract model `T` (an interface that extends abst::BaseModel) as a Qt item model: the same
/// object is both. Rows are the elements below the operator's root, columns those of the display
/// table; an index carries its proxy::Element as internal pointer.
///
/// Neither the operator nor the display table is owned; the concrete model's owner sets both
/// before a view shows the model. Every edit runs inside an app::ScopedUndo of its own. Emits what
/// Qt asks of a model, and dataChanged with the role alone for an accepted edit.
///
/// A host that changes its elements announces it through the begin and end operations; one that
/// replaces them all resets through the concrete model.
template <class T>
class TViewModel : public QAbstractItemModel, public gui::ViewModel, public T {
  static_assert(std::is_base_of_v<abst::BaseModel, T>, "T is an abstract model");

 public:
  using AbstractModel = T;

  explicit TViewModel(QObject* parent = nullptr) : QAbstractItemModel(parent) {
    // Whatever was announced and not ended, all rows have been read anew.
    connect(this, &QAbstractItemModel::modelReset, this, [this] { announcer_ = {}; });
  }

  // The abstract model.
  void setDisplayTable(domain::DisplayTable* table) override;
  domain::DisplayTable* getDisplayTable() const override { return table_; }
  proxy::ElementGroup* getRoot() const override {
    return operator_ != nullptr ? operator_->getRoot() : nullptr;
  }
  domain::Operator* getOperator() const override { return operator_; }
  void setOperator(domain::Operator* op) override;
  void invalidate() override {}
  bool canMoveUp(proxy::Element* element) const override { return hasSibling(element, -1); }
  bool canMoveDown(proxy::Element* element) const override { return hasSibling(element, +1); }
  void beginAddItem(proxy::Element* before, int count, proxy::Element* parent) override {
    onBeginAddItem(before, count, parent);
  }
  void endAddItem() override { onEndAddItem(); }
  void beginDelItem(proxy::Element* first, int count, proxy::Element* parent) override {
    onBeginDelItem(first, count, parent);
  }
  void endDelItem() override { onEndDelItem(); }
  void beginMoveUpItem(proxy::Element* item, proxy::Element* parent) override {
    onBeginMoveUpItem(item, parent);
  }
  void endMoveUpItem() override { onEndMoveUpItem(); }
  void beginMoveDownItem(proxy::Element* item, proxy::Element* parent) override {
    onBeginMoveDownItem(item, parent);
  }
  void endMoveDownItem() override { onEndMoveDownItem(); }

  // What views ask beyond Qt.
  QModelIndex makeIndex(proxy::Element* element, int column) const override;
  proxy::Element* getInternalData(const QModelIndex& index) const override {
    return elementOf(index);
  }
  bool getColumnWidth(int column, int& width) const override;
  void setColumnWidth(int column, int width) override;
  int getColumnIndex(const std::string& key) const override;
  std::string getColumnName(int column) const override { return getFieldName(column); }
  void getMultiHeaderData(std::list<std::shared_ptr<StGridHeadData>>& groups) const override;
  bool isAcceptRow(proxy::Element* /*element*/) const override { return true; }
  bool isAcceptColumn(int /*column*/) const override { return true; }
  void connectLayoutAboutToBeChanged(const LayoutSlot& /*slot*/) override {}
  void connectLayoutChanged(const LayoutSlot& /*slot*/) override {}

  // The Qt model.
  QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
  QModelIndex parent(const QModelIndex& index) const override;
  using QObject::parent;
  int rowCount(const QModelIndex& parent = {}) const override;
  bool hasChildren(const QModelIndex& parent = {}) const override { return rowCount(parent) > 0; }
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  // Columns.
  /// The header row; null without a display table.
  domain::DisplayRow* getHeader() const {
    return table_ != nullptr ? table_->getHeader() : nullptr;
  }
  domain::DataField* getDataField(int column) const;
  domain::DataField* getDataField(const std::string& key) const;
  /// The key of the column; empty when there is none.
  std::string getFieldName(int column) const;
  bool isZeroDisplayEmpty(int column) const;

  // Values.
  QVariant Visit(const domain::Value& value) const { return toQVariant(value); }
  std::string formatDouble(const domain::DataField* field, double value) const {
    return field != nullptr ? formatNumber(*field, value) : std::string();
  }
  /// Whether a floating-point cell without a value shows a formatted zero; false leaves it empty.
  virtual bool showValueOnFailToGetFloatValue(const std::string& /*fieldKey*/) const {
    return true;
  }

  /// Lets the root reorder its members by `less`, around it telling Qt that the layout changes and
  /// where each persistent index has gone.
  /// With an `arrange`, a group that offers it orders its members by that instead.
  void reorder(const proxy::ElementGroup::Less& less,
               const proxy::ElementGroup::Arrange& arrange = {});

 protected:
  virtual void onBeginAddItem(proxy::Element* before, int count, proxy::Element* parent);
  virtual void onEndAddItem();
  virtual void onBeginDelItem(proxy::Element* first, int count, proxy::Element* parent);
  virtual void onEndDelItem();
  virtual void onBeginMoveUpItem(proxy::Element* item, proxy::Element* parent);
  virtual void onEndMoveUpItem();
  virtual void onBeginMoveDownItem(proxy::Element* item, proxy::Element* parent);
  virtual void onEndMoveDownItem();

 private:
  static proxy::Element* elementOf(const QModelIndex& index) {
    return static_cast<proxy::Element*>(index.internalPointer());
  }
  const domain::ColumnDescriptor* descriptor(int column) const {
    const domain::DisplayRow* header = getHeader();
    return header != nullptr ? header->column(column) : nullptr;
  }
  bool hasSibling(proxy::Element* element, int distance) const {
    const QModelIndex at = makeIndex(element, 0);
    return at.isValid() && index(at.row() + distance, 0, at.parent()).isValid();
  }
  int childCount(proxy::Element* parent) const;
  QVariant displayData(const domain::ColumnDescriptor& column, const domain::Value& value) const;
  static bool zeroShowsEmpty(const domain::ColumnDescriptor& column);
  static bool isTextColumn(const domain::ColumnDescriptor& column) {
    return column.field == nullptr || column.field->type == domain::StringField;
  }

  domain::Operator* operator_ = nullptr;
  domain::DisplayTable* table_ = nullptr;
  RowAnnouncer announcer_;
  // The operator's answers land here, one for texts and one for everything else, so that reading
  // cell after cell reuses the room of the text before.
  mutable domain::Value textScratch_ = std::string();
  mutable domain::Value otherScratch_;
};

// ---------------------------------------------------------------------------------------------
// Abstract model

template <class T>
void TViewModel<T>::setDisplayTable(domain::DisplayTable* table) {
  beginResetModel();
  table_ = table;
  endResetModel();
}

template <class T>
void TViewModel<T>::setOperator(domain::Operator* op) {
  beginResetModel();
  operator_ = op;
  endResetModel();
}

template <class T>
int TViewModel<T>::childCount(proxy::Element* parent) const {
  if (parent != nullptr) return parent->childCount();
  const proxy::ElementGroup* root = getRoot();
  return root != nullptr ? root->size() : 0;
}

template <class T>
void TViewModel<T>::onBeginAddItem(proxy::Element* before, int count, proxy::Element* parent) {
  using Change = RowAnnouncer::Change;
  if (!announcer_.mayBegin(Change::Add)) return;
  const int first = before != nullptr ? before->row() : childCount(parent);
  announcer_.began(Change::Add, count > 0);
  if (count > 0) beginInsertRows(makeIndex(parent, 0), first, first + count - 1);
}

template <class T>
void TViewModel<T>::onEndAddItem() {
  if (announcer_.end(RowAnnouncer::Change::Add)) endInsertRows();
}

template <class T>
void TViewModel<T>::onBeginDelItem(proxy::Element* first, int count, proxy::Element* parent) {
  using Change = RowAnnouncer::Change;
  if (!announcer_.mayBegin(Change::Remove)) return;
  const bool sensible = first != nullptr && count > 0;
  announcer_.began(Change::Remove, sensible);
  if (sensible) {
    const int row = first->row();
    beginRemoveRows(makeIndex(parent, 0), row, row + count - 1);
  }
}

template <class T>
void TViewModel<T>::onEndDelItem() {
  if (announcer_.end(RowAnnouncer::Change::Remove)) endRemoveRows();
}

template <class T>
void TViewModel<T>::onBeginMoveUpItem(proxy::Element* item, proxy::Element* parent) {
  using Change = RowAnnouncer::Change;
  if (!announcer_.mayBegin(Change::MoveUp)) return;
  const QModelIndex under = makeIndex(parent, 0);
  const bool possible = item != nullptr && item->row() > 0;
  const int row = possible ? item->row() : 0;
  announcer_.began(Change::MoveUp, possible && beginMoveRows(under, row, row, under, row - 1));
}

template <class T>
void TViewModel<T>::onEndMoveUpItem() {
  if (announcer_.end(RowAnnouncer::Change::MoveUp)) endMoveRows();
}

template <class T>
void TViewModel<T>::onBeginMoveDownItem(proxy::Element* item, proxy::Element* parent) {
  using Change = RowAnnouncer::Change;
  if (!announcer_.mayBegin(Change::MoveDown)) return;
  // Qt is told that the lower neighbour moves up: the same change without Qt's off-by-one.
  const QModelIndex under = makeIndex(parent, 0);
  const int row = item != nullptr ? item->row() : -1;
  const bool possible = row >= 0 && row + 1 < childCount(parent);
  announcer_.began(Change::MoveDown,
                   possible && beginMoveRows(under, row + 1, row + 1, under, row));
}

template <class T>
void TViewModel<T>::onEndMoveDownItem() {
  if (announcer_.end(RowAnnouncer::Change::MoveDown)) endMoveRows();
}

template <class T>
void TViewModel<T>::reorder(const proxy::ElementGroup::Less& less,
                            const proxy::ElementGroup::Arrange& arrange) {
  proxy::ElementGroup* root = getRoot();
  if (root == nullptr) return;
  emit layoutAboutToBeChanged({}, VerticalSortHint);
  if (!arrange || !root->arrange(arrange)) root->reorder(less);
  const QModelIndexList before = persistentIndexList();
  QModelIndexList after;
  after.reserve(before.size());
  for (const QModelIndex& old : before) after << makeIndex(getInternalData(old), old.column());
  changePersistentIndexList(before, after);
  emit layoutChanged({}, VerticalSortHint);
}

// ---------------------------------------------------------------------------------------------
// Structure

template <class T>
QModelIndex TViewModel<T>::makeIndex(proxy::Element* element, int column) const {
  if (element == nullptr) return {};
  if (element->parent() == nullptr && getRoot() == nullptr) return {};
  return createIndex(element->row(), column, element);
}

template <class T>
QModelIndex TViewModel<T>::index(int row, int column, const QModelIndex& parent) const {
  const domain::DisplayRow* header = getHeader();
  if (row < 0 || column < 0 || (header != nullptr && column >= header->columnCount())) return {};
  proxy::Element* child = nullptr;
  if (parent.isValid()) {
    const proxy::Element* above = elementOf(parent);
    child = above != nullptr ? above->child(row) : nullptr;
  } else if (const proxy::ElementGroup* root = getRoot()) {
    child = root->member(row);
  }
  return child != nullptr ? createIndex(row, column, child) : QModelIndex();
}

template <class T>
QModelIndex TViewModel<T>::parent(const QModelIndex& index) const {
  const proxy::Element* element = index.isValid() ? elementOf(index) : nullptr;
  return element != nullptr ? makeIndex(element->parent(), 0) : QModelIndex();
}

template <class T>
int TViewModel<T>::rowCount(const QModelIndex& parent) const {
  if (!parent.isValid()) return childCount(nullptr);
  const proxy::Element* element = elementOf(parent);
  return element != nullptr ? element->childCount() : 0;
}

template <class T>
int TViewModel<T>::columnCount(const QModelIndex& /*parent*/) const {
  const domain::DisplayRow* header = getHeader();
  return header != nullptr ? header->columnCount() : 0;
}

// ---------------------------------------------------------------------------------------------
// Columns

template <class T>
domain::DataField* TViewModel<T>::getDataField(int column) const {
  const domain::ColumnDescriptor* found = descriptor(column);
  return found != nullptr ? found->field : nullptr;
}

template <class T>
domain::DataField* TViewModel<T>::getDataField(const std::string& key) const {
  return getDataField(getColumnIndex(key));
}

template <class T>
std::string TViewModel<T>::getFieldName(int column) const {
  const domain::ColumnDescriptor* found = descriptor(column);
  return found != nullptr ? found->key : std::string();
}

template <class T>
int TViewModel<T>::getColumnIndex(const std::string& key) const {
  const domain::DisplayRow* header = getHeader();
  return header != nullptr ? header->columnIndex(key) : -1;
}

template <class T>
bool TViewModel<T>::getColumnWidth(int column, int& width) const {
  const domain::ColumnDescriptor* found = descriptor(column);
  if (found == nullptr || !found->width) return false;
  width = *found->width;
  return true;
}

template <class T>
void TViewModel<T>::setColumnWidth(int column, int width) {
  domain::DisplayRow* header = getHeader();
  domain::ColumnDescriptor* found = header != nullptr ? header->column(column) : nullptr;
  if (found != nullptr) found->width = width;
}

template <class T>
void TViewModel<T>::getMultiHeaderData(std::list<std::shared_ptr<StGridHeadData>>& groups) const {
  domain::DisplayRow* header = getHeader();
  if (header == nullptr) return;
  header->prepareHeaderGroups();
  for (const domain::HeaderGroup& group : header->headerGroups()) {
    if (groups.size() == groups.max_size()) throw std::length_error("list<T> too long");
    auto data = std::make_shared<StGridHeadData>(header->groupCaption(group.key));
    data->collectColumns(*header, group.columnKeys);
    groups.push_back(std::move(data));
  }
}

template <class T>
bool TViewModel<T>::zeroShowsEmpty(const domain::ColumnDescriptor& column) {
  if (column.zeroShowsEmpty) return *column.zeroShowsEmpty;
  return column.field != nullptr && column.field->zeroShowsEmpty.value_or(false);
}

template <class T>
bool TViewModel<T>::isZeroDisplayEmpty(int column) const {
  const domain::ColumnDescriptor* found = descriptor(column);
  return found != nullptr && zeroShowsEmpty(*found);
}

template <class T>
QVariant TViewModel<T>::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  const domain::ColumnDescriptor* column = descriptor(section);
  if (column == nullptr) return {};
  if (column->title) return QString::fromStdString(*column->title);
  return column->field != nullptr ? QString::fromStdString(column->field->displayName) : QVariant();
}

// ---------------------------------------------------------------------------------------------
// Values

template <class T>
QVariant TViewModel<T>::displayData(const domain::ColumnDescriptor& column,
                                    const domain::Value& value) const {
  const domain::DataField* field = column.field;
  if (field != nullptr &&
      (field->type == domain::FloatingPointField || std::holds_alternative<double>(value))) {
    const auto* held = std::get_if<double>(&value);
    if (const std::optional<double> number = held != nullptr ? *held : toNumber(value)) {
      if (std::fabs(*number) < 1e-6 && zeroShowsEmpty(column)) return {};
      return numberText(*field, *number);
    }
  }
  return Visit(value);
}

template <class T>
QVariant TViewModel<T>::data(const QModelIndex& index, int role) const {
  const domain::ColumnDescriptor* column = descriptor(index.column());
  if (role == domain::FieldKeyRole) {
    return column != nullptr ? QString::fromStdString(column->key) : QString();
  }
  if (role == domain::FieldTypeRole) {
    return column != nullptr && column->field != nullptr ? column->field->type : 0;
  }
  const proxy::Element* element = elementOf(index);
  if (element == nullptr || column == nullptr || operator_ == nullptr) return {};

  const bool text = isTextColumn(*column) && (role == Qt::DisplayRole || role == Qt::EditRole);
  if (text) {
    if (const std::string* kept = operator_->peekText(element, column->key, role)) {
      return textCell(*kept);
    }
  }
  domain::Value& value = text ? textScratch_ : otherScratch_;
  if (!operator_->getValue(element, column->key, role, value)) {
    const bool number = role == Qt::DisplayRole && column->field != nullptr &&
                        column->field->type == domain::FloatingPointField;
    if (!number || zeroShowsEmpty(*column) || !showValueOnFailToGetFloatValue(column->key)) {
      return {};
    }
    return numberText(*column->field, 0.0);
  }
  QVariant answer = role == Qt::DisplayRole      ? displayData(*column, value)
                    : role == Qt::CheckStateRole ? toCheckState(Visit(value))
                                                 : Visit(value);
  // An object lives as long as what was answered, and no longer.
  if (std::holds_alternative<scoped_refptr<base::Object>>(value)) value = std::monostate();
  return answer;
}

template <class T>
bool TViewModel<T>::setData(const QModelIndex& index, const QVariant& value, int role) {
  const app::ScopedUndo undo((std::string()));
  const domain::ColumnDescriptor* column = descriptor(index.column());
  proxy::Element* element = elementOf(index);
  if (column == nullptr || column->field == nullptr || element == nullptr || operator_ == nullptr) {
    return false;
  }
  const std::optional<domain::Value> typed = toFieldValue(column->field->type, value);
  if (!typed) {
    base::LogError("Failed to Variant translaotr ");
    return false;
  }
  if (!operator_->setValue(element, column->key, *typed, role)) return false;
  emit dataChanged(index, index, {role});
  return true;
}

template <class T>
Qt::ItemFlags TViewModel<T>::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = Qt::ItemIsSelectable;
  const proxy::Element* element = elementOf(index);
  const domain::ColumnDescriptor* column = descriptor(index.column());
  if (element == nullptr || column == nullptr || operator_ == nullptr) return flags;
  if (operator_->isEditable(element, column->key)) flags |= Qt::ItemIsEditable;
  if (operator_->isCheckable(element, column->key)) {
    flags |= Qt::ItemIsUserCheckable | Qt::ItemIsAutoTristate;
  }
  if (operator_->isEnabled(element, column->key)) flags |= Qt::ItemIsEnabled;
  return flags;
}

}  // namespace gui
