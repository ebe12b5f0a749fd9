#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "host/domain/display_table.h"
#include "host/domain/qce/destructors/des_res_item_operator.h"
#include "workbench/records/project.h"

namespace operators {

std::unique_ptr<domain::DisplayTable> makeDesResItemGuideTable();
std::unique_ptr<domain::DisplayTable> makeDesResItemSummaryTable();

/// Which items an entry of the guide stands for.
struct ItemScope {
  bool everything = true;
  bool waiting = false;    ///< neither linked nor collected
  bool collected = false;  ///< into whatever entry
  std::optional<records::Category> category;
  std::optional<records::CostAccount*> account;  ///< itself, not those below it; null: none
  const records::Subcontract* entry = nullptr;

  bool holds(const records::ResourceItem& item) const;
};

/// What the items can be summed up by: all of them, those that wait, and each category, cost
/// account and subcontract entry that has any, with the number of items and their money.
class DesResItemGuideOperator : public domain::qce::destructors::DesResItemGuideOperator {
 public:
  explicit DesResItemGuideOperator(records::Project& project);
  ~DesResItemGuideOperator() override;

  /// Everything for what is no entry, or only holds others.
  static ItemScope scopeOf(const proxy::Element* entry);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* entry, const std::string& key, int role,
                domain::Value& out) const override;
  void rebuild() override;

 private:
  class Entry;

  records::Project& project_;
  scoped_refptr<records::Group> root_;
};

/// The items of one entry of the guide; equal ones (category, name, specification, unit, price) of
/// all sub-projects are one row.
class DesResItemSummaryOperator : public domain::qce::destructors::DesResItemSummaryOperator {
 public:
  explicit DesResItemSummaryOperator(records::Project& project);
  ~DesResItemSummaryOperator() override;

  /// The items that a row sums up.
  static std::vector<records::ResourceItem*> itemsOf(const proxy::Element* row);

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* row, const std::string& key, int role,
                domain::Value& out) const override;
  void setGuideEntry(proxy::Element* entry) override;
  void rebuild() override;
  std::string getEmptyReason() const override;

 private:
  class Row;

  records::Project& project_;
  ItemScope scope_;
  scoped_refptr<records::Group> root_;
};

}  // namespace operators
