#include "engineering/fee_summary_navigation_model.h"

#include <string>
#include <utility>
#include <vector>

namespace gui::qce {
namespace {

constexpr char NameKey[] = "QCE_FSNavigationName";

class Entry : public proxy::Element {
 public:
  Entry(std::string text, int row) : name(std::move(text)), row_(row) {}

  proxy::Element* parent() const override { return nullptr; }
  int row() const override { return row_; }
  int childCount() const override { return 0; }
  proxy::Element* child(int /*row*/) const override { return nullptr; }
  std::int64_t id() const override { return row_ + 1; }

  const std::string name;

 private:
  int row_;
};

}  // namespace

/// The entries, in an order that stays.
class QCEFeeSummaryNavigationModelImpl::Root : public proxy::ElementGroup {
 public:
  void add(const std::string& name) { entries_.emplace_back(new Entry(name, size())); }

  int size() const override { return static_cast<int>(entries_.size()); }
  proxy::Element* member(int row) const override {
    return row >= 0 && row < size() ? entries_[static_cast<std::size_t>(row)].get() : nullptr;
  }
  void reorder(const Less& /*less*/) override {}

 private:
  std::vector<scoped_refptr<Entry>> entries_;
};

class QCEFeeSummaryNavigationModelImpl::Names : public domain::Operator {
 public:
  explicit Names(Root& root) : root_(root) {}

  proxy::ElementGroup* getRoot() override { return &root_; }
  bool getValue(const proxy::Element* element, const std::string& key, int role,
                domain::Value& out) const override {
    if (element == nullptr || key != NameKey) return false;
    if (role != domain::DisplayRole && role != domain::ToolTipRole) return false;
    domain::AssignText(out, static_cast<const Entry*>(element)->name);
    return true;
  }

 private:
  Root& root_;
};

QCEFeeSummaryNavigationModelImpl::QCEFeeSummaryNavigationModelImpl()
    : root_(new Root),
      names_(std::make_unique<Names>(*root_)),
      table_(std::make_unique<domain::DisplayTable>("QCE_FeeSummaryNavigation")) {
  for (const char* name : {"按投标费用汇总", "按项目结构汇总", "按成本科目汇总"}) {
    root_->add(name);
  }
  domain::DataField field;
  field.displayName = "汇总方式";
  table_->getHeader()->addColumn(NameKey, std::move(field));
  setDisplayTable(table_.get());
  setOperator(names_.get());  // resets, so that the rows are seen
}

QCEFeeSummaryNavigationModelImpl::~QCEFeeSummaryNavigationModelImpl() = default;

}  // namespace gui::qce
