#pragma once

#include <memory>

#include "host/domain/display_table.h"
#include "host/domain/qce/indirect_fee_right_operator.h"
#include "workbench/records/project.h"

namespace operators {

std::unique_ptr<domain::DisplayTable> makeFeeGroupTable();
std::unique_ptr<domain::DisplayTable> makeFeeItemTable();

/// The fee groups of a project with what they cost. Its rows stand for groups alone, so that a
/// group without groups below it is a leaf.
class IndirectFeeLeftOperator : public domain::Operator {
 public:
  explicit IndirectFeeLeftOperator(records::Project& project);
  ~IndirectFeeLeftOperator() override;

  /// The group that a row stands for; null for what is no row.
  static records::IndirectFeeGroup* groupOf(const proxy::Element* element);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;

 private:
  records::Project& project_;
  scoped_refptr<records::Group> root_;
};

/// The fee items of one group: what was budgeted beside what they cost. Refusals are told through
/// app::qce::GetQCEChannel() and name the item and the cure.
class IndirectFeeRightOperator : public domain::qce::QCEIndirectFeeRightOperator {
 public:
  explicit IndirectFeeRightOperator(records::Project& project);
  ~IndirectFeeRightOperator() override;

  static records::IndirectFeeItem* itemOf(const proxy::Element* element);
  /// The row of an item; null when it is not shown.
  proxy::Element* rowOf(const records::IndirectFeeItem& item) const;
  records::IndirectFeeGroup* group() const { return group_; }  ///< null when none is shown
  /// The group has got, or is about to lose, the item in this row.
  void insertRow(int row);
  void removeRow(int row);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;
  void setParentElement(proxy::Element* group) override;
  std::string formatHeader(const std::string& caption, const std::string& name) const override;

 private:
  bool display(const records::IndirectFeeItem& item, int column, int row, domain::Value& out) const;

  records::Project& project_;
  records::IndirectFeeGroup* group_ = nullptr;
  scoped_refptr<records::Group> root_;
};

}  // namespace operators
