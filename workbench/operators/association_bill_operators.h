#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/bwidgets/text_matcher.h"
#include "host/domain/display_table.h"
#include "host/domain/qce/association_bill_left_operator.h"
#include "host/domain/qce/association_bill_right_operator.h"
#include "workbench/records/project.h"

namespace operators {

/// The columns of the two trees of the bill association, with their titles and widths.
std::unique_ptr<domain::DisplayTable> makeAssociationSectionTable();
std::unique_ptr<domain::DisplayTable> makeAssociationBillTable();

/// A unit work and the sections below it that hold bills. The rows are the operator's own, with the
/// ids of the records.
class AssociationSectionOperator : public domain::qce::QCEAssociationBillLeftOperator {
 public:
  AssociationSectionOperator();
  ~AssociationSectionOperator() override;

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;

  /// A node of the structure.
  void setSubProject(proxy::Element* subProject) override;
  void reload() override;

 private:
  records::StructureNode* subProject_ = nullptr;
  scoped_refptr<records::Group> root_;
};

/// The sections of a unit work with their bills, and which of these are associated with the chosen
/// cost resource items. The rows are the operator's own, with the ids of the records; sorting them
/// leaves the project as it is.
class AssociationBillOperator : public domain::qce::QCEAssociationBillRightOperator {
 public:
  explicit AssociationBillOperator(records::Project& project);
  ~AssociationBillOperator() override;

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* element, const std::string& key,
                              int role) const override;
  bool isCheckable(const proxy::Element* element, const std::string& key) const override;

  /// Elements that are no cost resource item are left out.
  void setBaseResItem(const Elements& items) override;
  /// A node of the structure.
  void setSubProject(proxy::Element* subProject) override;
  void reload() override;
  bool isBill(const proxy::Element* row) const override;
  bool isAssociated(const proxy::Element* bill) const override;
  /// A part of the code, the name or the features, whatever the case, or of their pinyin initials.
  bool isExcluded(const proxy::Element* row, const std::string& text) const override;
  bool isInSection(const proxy::Element* row, const proxy::Element* section) const override;
  /// More digits than the column shows, where a quantity has them: it is compared with paper.
  std::optional<int> getPrecision(const proxy::Element* row, const std::string& key) const override;
  /// A `unify` that differs from isUnified() is also given to the bills that stay associated.
  bool associate(const Elements& bills, const Elements& cancelled, bool unify) override;

  /// Whether there are associated bills and all of them are summarised (汇总统计).
  bool isUnified() const override { return unified_; }
  /// How many of these bills have something pooled into one of the items.
  int pooledCount(const Elements& bills) const;

 private:
  class BillRow;
  static const BillRow* billRow(const proxy::Element* element);
  /// With how many of the items the bill is associated.
  std::size_t associations(const records::Bill& bill) const;
  void readAssociations();

  records::Project& project_;
  records::StructureNode* subProject_ = nullptr;
  scoped_refptr<records::Group> root_;
  std::vector<scoped_refptr<records::ResourceItem>> items_;
  std::unordered_map<const records::Bill*, std::size_t> associations_;
  bool unified_ = false;
  mutable std::string matched_;
  mutable bwidgets::TextMatcher matcher_;
  mutable std::unordered_map<const records::Bill*, bool> matches_;  // of the text above
};

}  // namespace operators
