#pragma once

#include <QSortFilterProxyModel>
#include <QTimer>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "framework/sort_inputs.h"
#include "framework/view_model.h"

namespace gui {

/// An abstract filter model `F` (an interface that extends abst::BaseModel and names what it
/// filters as F::SourceModel) as a sort/filter proxy over the TViewModel of that source.
///
/// A concrete filter decides about rows by overriding isAcceptRow, or its element-level default
/// filterAcceptsRow(proxy::Element*). A sort reorders the elements of the source 100 ms after the
/// last request; layout slots are called around it. The source is not owned and outlives the
/// proxy.
template <class F>
class TFilterViewModel : public QSortFilterProxyModel, public gui::ViewModel, public F {
  static_assert(std::is_base_of_v<abst::BaseModel, F>, "F is an abstract filter model");

 public:
  using SourceModel = typename F::SourceModel;
  using SourceViewModel = TViewModel<SourceModel>;
  using AbstractModel = F;

  /// How long a requested sort waits for a later one, in milliseconds.
  static constexpr int SortDelay = 100;

  explicit TFilterViewModel(SourceModel* source)
      : source_(source), qtSource_(dynamic_cast<SourceViewModel*>(source)) {
    if (qtSource_ != nullptr) setSourceModel(qtSource_);
    setRecursiveFilteringEnabled(true);
  }

  // The abstract model: the source answers.
  void setDisplayTable(domain::DisplayTable* table) override {
    if (source_ != nullptr) source_->setDisplayTable(table);
  }
  domain::DisplayTable* getDisplayTable() const override {
    return source_ != nullptr ? source_->getDisplayTable() : nullptr;
  }
  proxy::ElementGroup* getRoot() const override {
    return source_ != nullptr ? source_->getRoot() : nullptr;
  }
  domain::Operator* getOperator() const override {
    return source_ != nullptr ? source_->getOperator() : nullptr;
  }
  void setOperator(domain::Operator* op) override {
    if (source_ != nullptr) source_->setOperator(op);
  }
  void invalidate() override { QSortFilterProxyModel::invalidate(); }
  bool canMoveUp(proxy::Element* element) const override {
    return source_ != nullptr && source_->canMoveUp(element);
  }
  bool canMoveDown(proxy::Element* element) const override {
    return source_ != nullptr && source_->canMoveDown(element);
  }
  void beginAddItem(proxy::Element* before, int count, proxy::Element* parent) override {
    if (source_ != nullptr) source_->beginAddItem(before, count, parent);
  }
  void endAddItem() override {
    if (source_ != nullptr) source_->endAddItem();
  }
  void beginDelItem(proxy::Element* first, int count, proxy::Element* parent) override {
    if (source_ != nullptr) source_->beginDelItem(first, count, parent);
  }
  void endDelItem() override {
    if (source_ != nullptr) source_->endDelItem();
  }
  void beginMoveUpItem(proxy::Element* item, proxy::Element* parent) override {
    if (source_ != nullptr) source_->beginMoveUpItem(item, parent);
  }
  void endMoveUpItem() override {
    if (source_ != nullptr) source_->endMoveUpItem();
  }
  void beginMoveDownItem(proxy::Element* item, proxy::Element* parent) override {
    if (source_ != nullptr) source_->beginMoveDownItem(item, parent);
  }
  void endMoveDownItem() override {
    if (source_ != nullptr) source_->endMoveDownItem();
  }

  // What views ask beyond Qt.
  QModelIndex makeIndex(proxy::Element* element, int column) const override;
  proxy::Element* getInternalData(const QModelIndex& proxyIndex) const override {
    return qtSource_ != nullptr ? qtSource_->getInternalData(mapToSource(proxyIndex)) : nullptr;
  }
  bool getColumnWidth(int column, int& width) const override {
    return qtSource_ != nullptr && qtSource_->getColumnWidth(sourceColumn(column), width);
  }
  void setColumnWidth(int column, int width) override {
    if (qtSource_ != nullptr) qtSource_->setColumnWidth(sourceColumn(column), width);
  }
  int getColumnIndex(const std::string& key) const override;
  std::string getColumnName(int column) const override;
  void getMultiHeaderData(std::list<std::shared_ptr<StGridHeadData>>& groups) const override {
    if (qtSource_ != nullptr) qtSource_->getMultiHeaderData(groups);
  }
  bool isAcceptRow(proxy::Element* element) const override { return filterAcceptsRow(element); }
  bool isAcceptColumn(int /*column*/) const override { return true; }
  void connectLayoutAboutToBeChanged(const LayoutSlot& slot) override {
    layoutAboutToChange_.connect(slot);
  }
  void connectLayoutChanged(const LayoutSlot& slot) override { layoutDidChange_.connect(slot); }

  // The Qt proxy.
  // The proxy's own index is normalised already: mapping it to the source and back gives the same
  // one, so nothing is mapped here, where every painted cell passes.
  using QSortFilterProxyModel::index;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

 protected:
  /// Element-level row hook; a concrete filter overrides it or isAcceptRow.
  virtual bool filterAcceptsRow(proxy::Element* /*element*/) const { return true; }
  /// Column hook: the visible setting of the source column's descriptor.
  virtual bool filterAcceptsColumn(int sourceColumn) const;

  bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
  bool filterAcceptsColumn(int sourceColumn, const QModelIndex& /*sourceParent*/) const override {
    return filterAcceptsColumn(sourceColumn);
  }
  bool lessThan(const QModelIndex& left, const QModelIndex& right) const override;

  /// What lessThan compares the cells of a source column by, where a class knows it: a sort then
  /// reads the cells and orders them without asking lessThan about pairs. Has to lead to the same
  /// order. Null, the default, has lessThan asked; a class that overrides lessThan alone is safe.
  virtual SortInputs::Reader sortReader(int /*sourceColumn*/) const { return nullptr; }
  /// The reader that the comparison above uses for a source column; null when it uses none.
  SortInputs::Reader bridgeReader(int sourceColumn) const {
    const domain::DisplayTable* table = getDisplayTable();
    const domain::ColumnDescriptor* found =
        table != nullptr ? table->getHeader()->column(sourceColumn) : nullptr;
    if (found == nullptr) return nullptr;
    return readerOf(found->field != nullptr ? found->field->type : domain::StringField);
  }

  /// The abstract model that is filtered; may be null.
  SourceModel* getSource() const { return source_; }
  /// The same object as a Qt model; null when the source is none.
  SourceViewModel* getSourceViewModel() const { return qtSource_; }
  /// The display text of a source cell as a number, read once per cell while a sort runs.
  double displayedNumber(const QModelIndex& sourceIndex) const {
    return sortInputs_.cell(sourceIndex, readDisplayedNumber).number;
  }
  /// The source column behind a proxy column, known also while no row is shown; -1 for none.
  int sourceColumn(int proxyColumn) const;

 private:
  void sortNow(int column, Qt::SortOrder order);
  /// The field type of a source cell's column; empty when the header row does not know its key.
  std::optional<int> comparedType(const QModelIndex& sourceIndex) const;

  SourceModel* source_;
  SourceViewModel* qtSource_;
  LayoutSignal layoutAboutToChange_;
  LayoutSignal layoutDidChange_;
  std::unique_ptr<QTimer> pendingSort_;
  mutable SortInputs sortInputs_;
  // While a sort runs: its source column (-1 otherwise) and what comparedType says of it.
  int sortedColumn_ = -1;
  std::optional<int> sortedType_;
};

template <class F>
QModelIndex TFilterViewModel<F>::makeIndex(proxy::Element* element, int column) const {
  if (qtSource_ == nullptr) return {};
  return mapFromSource(qtSource_->makeIndex(element, mapToSource(index(0, column)).column()));
}

template <class F>
std::string TFilterViewModel<F>::getColumnName(int column) const {
  if (qtSource_ == nullptr) return {};
  return qtSource_->getColumnName(mapToSource(index(0, column)).column());
}

template <class F>
int TFilterViewModel<F>::getColumnIndex(const std::string& key) const {
  if (qtSource_ == nullptr) return -1;
  const int column = qtSource_->getColumnIndex(key);
  if (rowCount() > 0) {
    const QModelIndex first = mapToSource(index(0, 0));
    return mapFromSource(first.sibling(first.row(), column)).column();
  }
  int accepted = 0;
  for (int c = 0; c <= column; ++c) accepted += filterAcceptsColumn(c) ? 1 : 0;
  return accepted - 1;
}

template <class F>
int TFilterViewModel<F>::sourceColumn(int proxyColumn) const {
  if (qtSource_ == nullptr || proxyColumn < 0) return -1;
  const int columns = qtSource_->columnCount();
  for (int c = 0, accepted = -1; c < columns; ++c) {
    if (filterAcceptsColumn(c) && ++accepted == proxyColumn) return c;
  }
  return -1;
}

template <class F>
QVariant TFilterViewModel<F>::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical && role == Qt::DisplayRole) return section + 1;
  return QSortFilterProxyModel::headerData(section, orientation, role);
}

template <class F>
bool TFilterViewModel<F>::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const {
  proxy::Element* element =
      qtSource_ != nullptr
          ? qtSource_->getInternalData(qtSource_->index(sourceRow, 0, sourceParent))
          : nullptr;
  if (element == nullptr) {
    base::LogError("filterAcceptsRow: proxy::Element* ptr = NULLPTR");
    return false;
  }
  return isAcceptRow(element);
}

template <class F>
bool TFilterViewModel<F>::filterAcceptsColumn(int column) const {
  const domain::DisplayTable* table = getDisplayTable();
  const domain::ColumnDescriptor* found =
      table != nullptr ? table->getHeader()->column(column) : nullptr;
  return found == nullptr || found->visible.value_or(true);
}

template <class F>
std::optional<int> TFilterViewModel<F>::comparedType(const QModelIndex& sourceIndex) const {
  const domain::DisplayTable* table = getDisplayTable();
  const std::string key = sourceIndex.data(domain::FieldKeyRole).toString().toStdString();
  if (table == nullptr || table->getHeader()->column(key) == nullptr) return {};
  return sourceIndex.data(domain::FieldTypeRole).toInt();
}

template <class F>
bool TFilterViewModel<F>::lessThan(const QModelIndex& left, const QModelIndex& right) const {
  const std::optional<int> type = left.column() == sortedColumn_ ? sortedType_ : comparedType(left);
  if (!type) return QSortFilterProxyModel::lessThan(left, right);
  return cellLessThan(*type, left, right, sortInputs_);
}

template <class F>
void TFilterViewModel<F>::sort(int column, Qt::SortOrder order) {
  pendingSort_ = std::make_unique<QTimer>();
  pendingSort_->setSingleShot(true);
  pendingSort_->setInterval(SortDelay);
  QObject::connect(pendingSort_.get(), &QTimer::timeout, this,
                   [this, column, order] { sortNow(column, order); });
  pendingSort_->start();
}

template <class F>
void TFilterViewModel<F>::sortNow(int column, Qt::SortOrder order) {
  // The timer is the sender of the running signal, so it goes when the event loop is back.
  pendingSort_.release()->deleteLater();
  if (getRoot() == nullptr || qtSource_ == nullptr) return;

  layoutAboutToChange_();
  const int source = sourceColumn(column);
  const QModelIndex first = qtSource_->index(0, source);
  if (first.isValid()) {
    sortInputs_.begin();
    sortedType_ = comparedType(first);
    sortedColumn_ = source;
    proxy::ElementGroup::Arrange arrange;
    if (const SortInputs::Reader reader = sortReader(source)) {
      arrange = [this, source, order, reader](std::vector<proxy::Element*>& siblings) {
        const auto indexOf = [this, source](proxy::Element* element) {
          return qtSource_->makeIndex(element, source);
        };
        sortByCells(siblings, indexOf, reader, order);
      };
    }
    const auto less = [this, source, order](proxy::Element* a, proxy::Element* b) {
      if (order == Qt::DescendingOrder) std::swap(a, b);
      return lessThan(qtSource_->makeIndex(a, source), qtSource_->makeIndex(b, source));
    };
    qtSource_->reorder(less, arrange);
    sortedColumn_ = -1;
    sortInputs_.end();
  }
  invalidate();
  layoutDidChange_();
}

}  // namespace gui
