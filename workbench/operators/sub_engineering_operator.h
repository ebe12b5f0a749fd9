#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/domain/display_table.h"
#include "host/domain/sub_engineering_operator.h"
#include "workbench/records/bill_costs.h"
#include "workbench/records/project.h"

namespace operators {

/// The columns of the bills' tree, with their titles, widths and header groups.
std::unique_ptr<domain::DisplayTable> makeSubEngineeringTable();

/// The structure of a project with its bills and their budget items. Bills can be edited; what a
/// rule forbids is named to the user through app::qce::GetQCEChannel(), and the edit is refused.
///
/// Amounts of nodes are the sums of their bills, worked out when they are first shown after a
/// change (see forgetAmounts).
class SubEngineeringOperator : public domain::SubEngineeringOperator {
 public:
  explicit SubEngineeringOperator(records::Project& project);
  ~SubEngineeringOperator() override;

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* element, const std::string& key,
                              int role) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEnabled(const proxy::Element* element, const std::string& key) const override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;

  bool isResourceRow(const proxy::Element* element) const override;
  void getBills(proxy::Element* element, std::vector<proxy::Element*>& out) const override;
  std::vector<std::pair<std::string, proxy::Element*>> getSubProjects() const override;
  std::vector<std::string> getTypes() const override;
  bool getQuantityDetail(const proxy::Element* element, domain::QuantityLines& out) const override;
  bool setQuantityDetail(proxy::Element* element, const domain::QuantityLines& lines) override;
  bool evaluate(const proxy::Element* element, const std::string& expression, double& value,
                std::string& error) const override;

  /// Something has changed that amounts follow from.
  void forgetAmounts();

 private:
  struct Amounts {
    costing::Decimal budget, cost;
  };

  bool displayBill(const records::Bill& bill, int column, domain::Value& out) const;
  bool displayNode(const records::StructureNode& node, int column, domain::Value& out) const;
  const Amounts& amountsOf(const records::Branch& row) const;
  bool write(records::Bill& bill, records::BillData data);

  records::Project& project_;
  mutable std::optional<records::BillCosts> costs_;
  mutable std::unordered_map<const records::Branch*, Amounts> amounts_;
};

}  // namespace operators
