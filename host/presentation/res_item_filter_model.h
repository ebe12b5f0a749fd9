#pragma once

#include <set>
#include <string>

#include "framework/filter_view_model.h"
#include "qce_export.h"

namespace gui {

/// What a generic resource-item filter was told to show: a text, a category, and columns to hide.
class QCE_EXPORT ResItemFilterState {
 public:
  /// Answers whether something changed.
  bool setText(const std::string& text);
  bool setType(const std::string& type);
  bool setHiddenColumns(const std::set<std::string>& keys);

  /// Whether the element is of the category, and code, name or specification hold the text
  /// (whatever the case).
  bool acceptsRow(const domain::Operator* op, const proxy::Element* element) const;
  const std::set<std::string>& hiddenColumns() const { return hidden_; }
  bool hidesColumn(const std::string& key) const { return hidden_.count(key) > 0; }

 private:
  std::string text_;
  std::string type_;
  std::set<std::string> hidden_;
};

/// How a page drives a resource-item filter without knowing what it filters.
class QCE_EXPORT ResItemTextFilter {
 public:
  virtual ~ResItemTextFilter();
  /// Keeps the items whose code, name or specification holds `text`; empty keeps all.
  virtual void filter(const std::string& text) = 0;
  /// Keeps the items of one category; "所有" or empty keeps all.
  virtual void filterType(const std::string& text) = 0;
  /// Hides the columns of these field keys, and no others.
  virtual void blackListOfColumn(const std::set<std::string>& keys) = 0;
  virtual const std::set<std::string>& blackList() const = 0;
};

/// The host's generic filter of resource items, over the filter interface `F` of a page: by text,
/// by category (人工, 材料, ...), and with columns left out. Each setter filters again at once.
template <class F>
class ResItemFilterModelImpl : public TFilterViewModel<F>, public ResItemTextFilter {
 public:
  using TFilterViewModel<F>::TFilterViewModel;

  void filter(const std::string& text) override {
    if (state_.setText(text)) this->invalidate();
  }
  void filterType(const std::string& text) override {
    if (state_.setType(text)) this->invalidate();
  }
  void blackListOfColumn(const std::set<std::string>& keys) override {
    // In one go: column by column, views are told of each below each row.
    if (state_.setHiddenColumns(keys)) this->invalidate();
  }
  const std::set<std::string>& blackList() const override { return state_.hiddenColumns(); }
  /// Shows the columns again that blackListOfColumn hid.
  void cleacColumnList() { blackListOfColumn({}); }

 protected:
  using TFilterViewModel<F>::filterAcceptsRow;
  using TFilterViewModel<F>::filterAcceptsColumn;

  bool filterAcceptsRow(proxy::Element* element) const override {
    return state_.acceptsRow(this->getOperator(), element);
  }
  bool filterAcceptsColumn(int column) const override {
    const domain::DisplayTable* table = this->getDisplayTable();
    const domain::ColumnDescriptor* found =
        table != nullptr ? table->getHeader()->column(column) : nullptr;
    return (found == nullptr || !state_.hidesColumn(found->key)) &&
           TFilterViewModel<F>::filterAcceptsColumn(column);
  }

 private:
  ResItemFilterState state_;
};

}  // namespace gui
