#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/domain/display_table.h"
#include "host/domain/qce/notional_pooling_operator.h"
#include "workbench/records/project.h"

namespace operators {

/// The columns of the pooling table, with their titles and widths.
std::unique_ptr<domain::DisplayTable> makeNotionalPoolingTable();

/// What can be pooled from some bills: a row for each bill with something left, below it a row for
/// each of its budget items with something left.
///
/// Quantities are shown rounded. What is shown stands for all that is left, so that it can always
/// be pooled and leaves no remainder too small to be seen. The rows hold what was left when the
/// bills were set.
class NotionalPoolingOperator : public domain::qce::QCENotionalPoolingOperator {
 public:
  explicit NotionalPoolingOperator(records::Project& project);
  ~NotionalPoolingOperator() override;

  /// Whether a budget item of the bill has something left.
  static bool hasRemainder(const records::Project& project, const records::Bill& bill);

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* element, const std::string& key,
                              int role) const override;
  bool isEnabled(const proxy::Element* element, const std::string& key) const override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;
  bool isCheckable(const proxy::Element* element, const std::string& key) const override;

  /// Elements that are no bill are left out.
  void setSubEngineerBills(std::vector<proxy::Element*>& bills) override;
  void setCurrentQCEGLJItem(proxy::Element* item) override;
  std::string getCurrentQCEResItemType() const override;
  double getMaxCollectionAmount(const proxy::Element* row) const override;
  void collectToQCEResItem(const std::map<proxy::Element*, double>& quantities) override;
  std::vector<proxy::Element*> getSameRowsOfOtherBills(const proxy::Element* row) const override;
  const proxy::Element* getOwningBill(const proxy::Element* row) const override;

 private:
  class BillRow;
  class ItemRow;
  static const BillRow* billRow(const proxy::Element* element);
  static const ItemRow* itemRow(const proxy::Element* element);

  records::Project& project_;
  scoped_refptr<records::Group> root_;
  scoped_refptr<records::ResourceItem> item_;
  // Made when first asked for.
  mutable std::unordered_map<std::string, std::vector<proxy::Element*>> rowsByName_;
};

}  // namespace operators
