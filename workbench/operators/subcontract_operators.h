#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/bwidgets/text_matcher.h"
#include "host/domain/display_table.h"
#include "host/domain/qce/destructors/des_set_subcontract_operator.h"
#include "workbench/records/project.h"
#include "workbench/services/subcontract_base.h"

/// What stands behind the page of subcontracts. Refusals are told through app::qce::GetQCEChannel()
/// and name the record and the cure.
namespace operators {

constexpr int MostSubcontractText = 500;  ///< characters of a text of an entry

std::unique_ptr<domain::DisplayTable> makeSubcontractTable();
std::unique_ptr<domain::DisplayTable> makeSubcontractCollectTable();
std::unique_ptr<domain::DisplayTable> makeSubcontractBillTable();
std::unique_ptr<domain::DisplayTable> makeSubcontractBaseTable();

/// The subcontract entries of a project. The rows are the operator's own, with the ids of the
/// records, since the records have rows below them.
class SubcontractOperator : public domain::Operator {
 public:
  explicit SubcontractOperator(records::Project& project);
  ~SubcontractOperator() override;

  /// The entry that a row stands for, or that the element is; null for none.
  static records::Subcontract* entryOf(proxy::Element* element);
  static const records::Subcontract* entryOf(const proxy::Element* element);
  proxy::Element* rowOf(const records::Subcontract& entry) const;
  /// The project has got, or is about to lose, the entry in this row, or has moved one.
  void insertRow(int row);
  void removeRow(int row);
  void moveRow(int from, int to);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;

 private:
  bool display(const records::Subcontract& entry, int column, domain::Value& out) const;
  bool choices(int column, domain::Value& out) const;
  bool toolTip(const records::Subcontract& entry, int column, domain::Value& out) const;
  bool write(records::Subcontract& entry, int column, const domain::Value& value);
  bool setMetering(records::Subcontract& entry, const std::string& text);

  records::Project& project_;
  scoped_refptr<records::Group> root_;
};

/// The entries with their bills, as the records have them, and each bill's share of the money.
class SubcontractCollectOperator : public domain::Operator {
 public:
  explicit SubcontractCollectOperator(records::Project& project) : project_(project) {}

  /// Shares are worked out when they are asked for, once until then.
  void forgetShares() { shares_.clear(); }

  proxy::ElementGroup* getRoot() override { return &project_.subcontracts(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;

 private:
  costing::Decimal shareOf(const records::Subcontract& entry, int row) const;

  records::Project& project_;
  mutable std::unordered_map<const records::Subcontract*, std::vector<costing::Decimal>> shares_;
};

/// All bills of a project as a flat table. The rows are the operator's own, with the ids of the
/// records; sorting them leaves the project as it is.
class SubcontractBillOperator : public domain::qce::destructors::DesSetSubcontractBillOperator {
 public:
  explicit SubcontractBillOperator(records::Project& project);
  ~SubcontractBillOperator() override;

  void setCurrent(records::Subcontract* entry) { current_.reset(entry); }  ///< null for none
  records::Subcontract* current() const { return current_.get(); }
  static records::Bill* billOf(const proxy::Element* row);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* element, const std::string& key,
                              int role) const override;
  bool isAssociated(const proxy::Element* bill) const override;
  /// A part of the code, the name or the features, whatever the case, or of their pinyin initials.
  bool isExcluded(const proxy::Element* bill, const std::string& text) const override;

 private:
  records::Project& project_;
  scoped_refptr<records::Group> root_;
  scoped_refptr<records::Subcontract> current_;
  mutable std::string matched_;
  mutable bwidgets::TextMatcher matcher_;
};

/// The entries of the base list.
class SubcontractBaseOperator : public domain::Operator {
 public:
  SubcontractBaseOperator();
  ~SubcontractBaseOperator() override;

  /// Changes the rows: the caller resets its model around the call.
  void setEntries(const std::vector<services::SubcontractBaseEntry>& entries);
  /// Null for what is no row.
  static const services::SubcontractBaseEntry* entryOf(const proxy::Element* row);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;

 private:
  scoped_refptr<records::Group> root_;
};

}  // namespace operators
