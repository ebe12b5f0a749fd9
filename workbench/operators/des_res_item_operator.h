#pragma once

#include <memory>
#include <unordered_map>

#include "host/domain/display_table.h"
#include "host/domain/qce/destructors/des_res_item_operator.h"
#include "workbench/operators/res_item_operator.h"
#include "workbench/records/project.h"

namespace operators {

std::unique_ptr<domain::DisplayTable> makeDesResItemTable();

/// The resource items of a project as the design-side page shows them. Its rows stand for items and
/// for their groups and are its own, so that ordering them leaves other pages alone. What an item
/// says, and the editing of it, is the resource-item operator's.
///
/// The rows are made when the model is first reset after the items have come or gone; a page that
/// was never opened costs nothing.
class DesResItemOperator : public domain::qce::destructors::DesResItemOperator {
 public:
  /// Both must outlive the operator.
  DesResItemOperator(records::Project& project, ResItemOperator& items);
  ~DesResItemOperator() override;

  /// The item that a row stands for; null for a group and for what is no row.
  static records::ResourceItem* itemOf(const proxy::Element* row);
  /// The row of an item; null when there is none.
  proxy::Element* rowOf(const records::ResourceItem& item) const;
  /// What is kept of the figures of rows is read again: of the item's groups, or of everything.
  void forget(const records::ResourceItem& item) const;
  void forgetAll() const;

  proxy::ElementGroup* getRoot() override { return root_.get(); }
  bool getValue(const proxy::Element* row, const std::string& key, int role,
                domain::Value& out) const override;
  const std::string* peekText(const proxy::Element* row, const std::string& key,
                              int role) const override;
  bool setValue(proxy::Element* row, const std::string& key, const domain::Value& value,
                int role) override;
  bool isEditable(const proxy::Element* row, const std::string& key) const override;

  int getItemWaitForCollectNum() const override;
  bool isItem(const proxy::Element* row) const override { return itemOf(row) != nullptr; }
  bool isGrouped() const override { return grouped_; }
  void setGrouped(bool grouped) override;
  void rebuildGroup() override;

 private:
  class Row;
  class GroupRow;

  const std::string* ownText(const records::ResourceItem& item, const std::string& key) const;
  bool itemValue(const Row& row, const std::string& key, int role, domain::Value& out) const;
  bool groupValue(const GroupRow& row, const std::string& key, int role, domain::Value& out) const;

  records::Project& project_;
  ResItemOperator& items_;
  bool grouped_ = true;
  scoped_refptr<records::Group> root_;
  std::unordered_map<const records::ResourceItem*, Row*> rows_;
};

}  // namespace operators
