#pragma once

#include <memory>

#include "host/domain/display_table.h"
#include "host/domain/qce/res_item_operator.h"
#include "workbench/records/project.h"

namespace operators {

/// The columns of the resource-item table, with their titles, widths and header groups.
std::unique_ptr<domain::DisplayTable> makeResItemTable();

/// The resource items of a project, grouped by sub-project and category. Grouping rows show their
/// totals and cannot be edited. Rules that an edit would break are named to the user through
/// app::qce::GetQCEChannel(), and the edit is refused.
class ResItemOperator : public domain::qce::QCEResItemOperator {
 public:
  explicit ResItemOperator(records::Project& project);
  ~ResItemOperator() override;

  proxy::ElementGroup* getRoot() override;
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* element, const std::string& key,
                              int role) const override;
  bool setValue(proxy::Element* element, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEnabled(const proxy::Element* element, const std::string& key) const override;
  bool isEditable(const proxy::Element* element, const std::string& key) const override;
  bool isCheckable(const proxy::Element* element, const std::string& key) const override;

  /// `subProject` is a node of the structure; the unit works at and below it are shown.
  void setSubProject(proxy::Element* subProject) override;
  /// Goes back from the order of a header sort to the stored one.
  void rebuildGroup() override;
  bool getField(const proxy::Element* element, const std::string& key,
                domain::Value& out) const override;
  bool getComment(const proxy::Element* element, std::string& out) const override;
  bool setComment(proxy::Element* element, const std::string& comment) override;
  int getFilterType() const override { return filterType_; }
  void setFilterType(int type) override { filterType_ = type; }

 private:
  bool display(const records::ResourceItem& item, int column, domain::Value& out) const;
  bool displayGroup(const records::ResourceGroup& group, int column, domain::Value& out) const;

  records::Project& project_;
  scoped_refptr<records::Group> root_;
  const records::StructureNode* subProject_ = nullptr;
  int filterType_ = domain::qce::FilterAll;
};

}  // namespace operators
