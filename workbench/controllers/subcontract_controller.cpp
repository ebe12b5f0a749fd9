#include "workbench/controllers/subcontract_controller.h"

#include <QMessageBox>
#include <QRegularExpression>
#include <QString>
#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "host/base/number_text.h"
#include "workbench/records/labels.h"
#include "workbench/services/templates.h"

namespace controllers {

namespace {

using operators::SubcontractOperator;
using records::Bill;
using records::MeteringMethod;
using records::Subcontract;
using records::SubcontractData;
using Elements = std::vector<proxy::Element*>;
using Entries = std::vector<scoped_refptr<Subcontract>>;

constexpr std::size_t WorkDigits =
    9;  // of a bill's code: chapter, section and item of the standard

bool tell(const std::string& message) {
  app::qce::GetQCEChannel()->message(message, QMessageBox::Ok);
  return false;
}

bool confirm(const std::string& question) {
  return app::qce::GetQCEChannel()->message(question, QMessageBox::Yes | QMessageBox::No) ==
         QMessageBox::Yes;
}

Entries entriesOf(const Elements& elements) {
  Entries entries;
  for (proxy::Element* element : elements) {
    if (Subcontract* entry = SubcontractOperator::entryOf(element)) entries.emplace_back(entry);
  }
  return entries;
}

std::vector<Bill*> billsOf(const Elements& rows) {
  std::vector<Bill*> bills;
  for (const proxy::Element* row : rows) {
    if (Bill* bill = operators::SubcontractBillOperator::billOf(row)) bills.push_back(bill);
  }
  return bills;
}

/// The bills of rows of the collection tree, by the entry that they stand below.
std::map<Subcontract*, std::vector<Bill*>> collectedOf(const Elements& rows) {
  std::map<Subcontract*, std::vector<Bill*>> bills;
  for (proxy::Element* row : rows) {
    auto* collected = dynamic_cast<records::SubcontractBill*>(row);
    auto* entry = collected != nullptr ? dynamic_cast<Subcontract*>(row->parent()) : nullptr;
    if (entry != nullptr) bills[entry].push_back(&collected->bill);
  }
  return bills;
}

/// The row numbers from the top of the structure down to the bill.
std::vector<int> placeOf(const Bill& bill) {
  std::vector<int> place;
  for (const proxy::Element* at = &bill; at != nullptr; at = at->parent()) {
    place.push_back(at->row());
  }
  std::reverse(place.begin(), place.end());
  return place;
}

/// The table may be sorted, and bills come from several entries; an entry gets them in the order of
/// the project.
void sortAsInProject(std::vector<Bill*>& bills) {
  std::map<std::vector<int>, Bill*> sorted;
  for (Bill* bill : bills) sorted[placeOf(*bill)] = bill;
  bills.clear();
  for (const auto& [place, bill] : sorted) bills.push_back(bill);
}

/// What tells a copy apart from all that is `taken`, which it joins.
std::string nameOfCopy(const std::string& of, std::set<std::string>& taken) {
  QString plain = QString::fromStdString(of);
  plain.remove(QRegularExpression("（副本\\d*）$"));
  for (int number = 1;; ++number) {
    const QString mark = number == 1 ? QString("（副本）") : QString("（副本%1）").arg(number);
    std::string name =
        (plain.left(operators::MostSubcontractText - mark.size()) + mark).toStdString();
    if (taken.insert(name).second) return name;
  }
}

/// What bills of the same work have in common; empty for a code that names no work.
std::pair<std::string, std::string> workOf(const Bill& bill) {
  const std::string& code = bill.code.str();
  if (code.size() < WorkDigits) return {};
  return {code.substr(0, WorkDigits), bill.unit.str()};
}

}  // namespace

SubcontractController::SubcontractController(records::Project& project,
                                             operators::SubcontractOperator& entries,
                                             operators::SubcontractCollectOperator& collected,
                                             operators::SubcontractBillOperator& bills)
    : project_(project),
      entries_(entries),
      collected_(collected),
      bills_(bills),
      baseTable_(operators::makeSubcontractBaseTable()) {
  baseModel_.setDisplayTable(baseTable_.get());
  baseModel_.setOperator(&baseOperator_);
  project_.addObserver(this);
}

SubcontractController::~SubcontractController() {
  project_.removeObserver(this);
}

void SubcontractController::setModels(abst::BaseModel* entries, abst::BaseModel* collected) {
  entryModel_ = entries;
  collectModel_ = collected;
}

// ---------------------------------------------------------------------------------------------
// What the page tells

void SubcontractController::setCurrentSubcontract(proxy::Element* entry) {
  bills_.setCurrent(SubcontractOperator::entryOf(entry));
}

std::string SubcontractController::handleMeteringMethod(proxy::Element* entry) {
  const Subcontract* changed = SubcontractOperator::entryOf(entry);
  if (changed == nullptr) return {};
  std::string text =
      records::label(*changed) + "已改为" + records::nameOf(changed->metering) + "：";
  if (changed->metering == MeteringMethod::ByBills && changed->childCount() == 0) {
    return text + "还没有关联清单，数量为 0。请在下方的清单表中关联清单。";
  }
  const auto money = [](const costing::Decimal& value) {
    return base::ToThousandthsString(value.toDouble(), costing::MoneyPlaces);
  };
  text += "数量 " + changed->quantityNow().rounded(costing::MaxQuantityPlaces).toString() +
          "，不含税单价 " + money(changed->price) + " 元，合价 " + money(changed->amount()) + " 元";
  return text;
}

// ---------------------------------------------------------------------------------------------
// Commands about entries

bool SubcontractController::run(const std::string& name, const Work& work) {
  std::string refusal;
  {
    app::ScopedUndo undo(name);
    try {
      work();
    } catch (const records::Refusal& refused) {
      refusal = refused.what();
    } catch (const std::overflow_error&) {
      refusal = "“" + name + "”后的合价超出可计算的范围，未修改。请检查分包的单价和清单的工程量。";
    }
    if (!refusal.empty()) undo.abandon();
  }
  return refusal.empty() || tell(refusal);
}

Elements SubcontractController::add(const std::string& name,
                                    const std::vector<SubcontractData>& made,
                                    proxy::Element* after) {
  const Subcontract* above = SubcontractOperator::entryOf(after);
  int row = above != nullptr ? above->row() + 1 : project_.subcontracts().size();
  Entries added;
  const bool done = run(name, [&] {
    for (const SubcontractData& data : made) {
      added.emplace_back(&project_.addSubcontract(data, row++));
    }
  });
  Elements rows;
  for (const auto& entry : added) {
    // Gone again where the step could not be stored.
    proxy::Element* shown = done ? entries_.rowOf(*entry) : nullptr;
    if (shown != nullptr) rows.push_back(shown);
  }
  return rows;
}

proxy::Element* SubcontractController::addSubcontract(proxy::Element* after) {
  SubcontractData data;
  data.name = project_.texts.intern("新增分包");
  const Elements rows = add("新增分包", {data}, after);
  return rows.empty() ? nullptr : rows.front();
}

Elements SubcontractController::duplicateSubcontracts(const Elements& entries) {
  std::set<std::string> taken;
  for (int row = 0; row < project_.subcontracts().size(); ++row) {
    taken.insert(static_cast<Subcontract*>(project_.subcontracts().rows().at(row))->name.str());
  }
  std::vector<SubcontractData> made;
  for (const auto& entry : entriesOf(entries)) {
    SubcontractData data = entry->data();
    data.name = project_.texts.intern(nameOfCopy(data.name.str(), taken));
    made.push_back(data);
  }
  return made.empty() ? Elements() : add("复制分包", made, entries.back());
}

bool SubcontractController::removeSubcontracts(const Elements& entries) {
  const Entries removed = entriesOf(entries);
  std::size_t bills = 0;
  std::size_t items = 0;
  for (const auto& entry : removed) {
    bills += static_cast<std::size_t>(entry->childCount());
    items += project_.collectedItems(*entry).size();
  }
  if (bills + items > 0) {
    const std::string which = removed.size() == 1
                                  ? records::label(*removed.front())
                                  : "选中的 " + std::to_string(removed.size()) + " 条分包";
    const std::string question =
        which + "关联了 " + std::to_string(bills) + " 条清单，归集了 " + std::to_string(items) +
        " 项人材机。\n删除后，清单不再属于此分包，人材机的成本重新计入工程。"
        "是否删除？";
    if (!confirm(question)) return false;
  }
  return run("删除分包", [&] {
    for (const auto& entry : removed) project_.removeSubcontract(*entry);
  });
}

bool SubcontractController::move(proxy::Element* entry, int distance) {
  const Subcontract* moved = SubcontractOperator::entryOf(entry);
  if (moved == nullptr) return false;
  const int to = moved->row() + distance;
  if (to < 0 || to >= project_.subcontracts().size()) return false;
  return run("移动分包", [&] { project_.moveSubcontract(moved->row(), to); });
}

// ---------------------------------------------------------------------------------------------
// Base list

abst::BaseModel* SubcontractController::getBaseList() {
  QString problem;
  const auto list = services::loadSubcontractBase(
      QString::fromStdString(app::GetPathMgr()->getTemplatePath()), &problem);
  if (!problem.isEmpty()) tell(problem.toStdString());
  baseModel_.setOperator(nullptr);
  baseOperator_.setEntries(list);
  baseModel_.setOperator(&baseOperator_);
  return &baseModel_;
}

Elements SubcontractController::addFromBase(const Elements& rows, proxy::Element* after) {
  std::vector<SubcontractData> made;
  std::set<std::string> unknown;
  for (const proxy::Element* row : rows) {
    const services::SubcontractBaseEntry* from = operators::SubcontractBaseOperator::entryOf(row);
    if (from == nullptr) continue;
    const auto intern = [this](const std::string& text) { return project_.texts.intern(text); };
    SubcontractData data;
    data.code = intern(from->code);
    data.name = intern(from->name);
    data.features = intern(from->features);
    data.unit = intern(from->unit);
    data.contractType = intern(from->contractType);
    data.metering = from->metering;
    data.contentQuota = intern(from->contentQuota);
    data.applicableArea = intern(from->applicableArea);
    data.remark = intern(from->remark);
    data.price = from->price;
    data.taxRate = from->taxRate;
    data.account = project_.findAccount(from->account);
    if (data.account == nullptr && !from->account.empty()) unknown.insert(from->account);
    made.push_back(data);
  }
  Elements added = made.empty() ? Elements() : add("从基础库添加分包", made, after);
  if (!added.empty() && !unknown.empty()) {
    std::string list;
    for (const std::string& account : unknown) list += (list.empty() ? "" : "、") + account;
    tell("工程中没有基础库所用的成本科目：" + list +
         "。\n相应分包的成本科目留空，请在分包表中选择工程的科目。");
  }
  return added;
}

// ---------------------------------------------------------------------------------------------
// Commands about bills

Subcontract* SubcontractController::requireCurrent() const {
  Subcontract* entry = bills_.current();
  // An entry that was removed stays known until another one is current.
  if (entry != nullptr && entries_.rowOf(*entry) != nullptr) return entry;
  tell("没有当前分包。请先在分包表中选择一条分包，再关联清单。");
  return nullptr;
}

bool SubcontractController::associate(const Elements& bills) {
  Subcontract* entry = requireCurrent();
  if (entry == nullptr) return false;
  std::vector<Bill*> wanted = billsOf(bills);
  sortAsInProject(wanted);
  return run("关联清单", [&] {
    // An entry that is only begun takes the unit of its first bills.
    if (entry->childCount() == 0 && entry->unit.empty() && !wanted.empty()) {
      SubcontractData data = *entry;
      data.unit = wanted.front()->unit;
      project_.set(*entry, data);
    }
    project_.assign(*entry, wanted);
  });
}

bool SubcontractController::disassociate(const Elements& bills) {
  Subcontract* entry = requireCurrent();
  return entry != nullptr &&
         run("取消关联清单", [&] { project_.unassign(*entry, billsOf(bills)); });
}

std::vector<Bill*> SubcontractController::sameWork(const Subcontract& entry) const {
  std::set<std::pair<std::string, std::string>> works;
  for (int row = 0; row < entry.childCount(); ++row) works.insert(workOf(entry.billAt(row).bill));
  works.erase(std::pair<std::string, std::string>());
  std::vector<Bill*> found;
  const proxy::ElementGroup* all = bills_.getRoot();
  for (int row = 0; row < all->size(); ++row) {
    Bill* bill = operators::SubcontractBillOperator::billOf(all->member(row));
    if (bill != nullptr && works.count(workOf(*bill)) > 0 && !project_.isAssigned(entry, *bill)) {
      found.push_back(bill);
    }
  }
  sortAsInProject(found);
  return found;
}

bool SubcontractController::applyToOtherBills() {
  Subcontract* entry = requireCurrent();
  if (entry == nullptr) return false;
  if (entry->childCount() == 0) {
    return tell(records::label(*entry) +
                "还没有清单，无从查找相同的清单。\n请先在清单表中关联一条清单，再应用到其他清单。");
  }
  const std::vector<Bill*> found = sameWork(*entry);
  if (found.empty()) {
    return tell("整个项目中没有与" + records::label(*entry) +
                "的清单相同（编码前 9 位和单位相同）的其他清单。");
  }
  std::size_t elsewhere = 0;
  for (const Bill* bill : found) elsewhere += project_.subcontractsOf(*bill).empty() ? 0 : 1;
  std::string question = "在整个项目中找到 " + std::to_string(found.size()) + " 条与" +
                         records::label(*entry) + "的清单相同（编码前 9 位和单位相同）的清单";
  if (elsewhere > 0) question += "，其中 " + std::to_string(elsewhere) + " 条已属于其他分包";
  question += "。\n是否全部归入此分包？";
  return confirm(question) && run("应用到其他清单", [&] { project_.assign(*entry, found); });
}

bool SubcontractController::removeCollected(const Elements& bills) {
  const auto taken = collectedOf(bills);
  return !taken.empty() && run("移除清单", [&] {
    for (const auto& [entry, from] : taken) project_.unassign(*entry, from);
  });
}

bool SubcontractController::moveCollected(const Elements& bills, proxy::Element* entry) {
  Subcontract* into = SubcontractOperator::entryOf(entry);
  auto taken = collectedOf(bills);
  taken.erase(into);
  if (into == nullptr || taken.empty()) return false;
  std::vector<Bill*> moved;
  std::set<const Bill*> once;
  for (const auto& [from, of] : taken) {
    for (Bill* bill : of) {
      // It would be given back here without being given away there: less than was asked for.
      if (project_.isAssigned(*into, *bill)) {
        return tell(records::label(*into) + "已有" + records::label(*bill) +
                    "，不能再移入；所选清单都未移动。\n请不要选中这条清单，或用“移除清单”把它从" +
                    records::label(*from) + "中移除。");
      }
      if (!once.insert(bill).second) {
        return tell("所选清单中，" + records::label(*bill) +
                    "在几条分包下都有，只能移入一次；所选清单都未移动。\n请只选中其中的一条。");
      }
      moved.push_back(bill);
    }
  }
  sortAsInProject(moved);
  return run("移到其他分包", [&] {
    for (const auto& [from, of] : taken) project_.unassign(*from, of);
    project_.assign(*into, moved);
  });
}

// ---------------------------------------------------------------------------------------------
// What happens to the records

void SubcontractController::subcontractChanged(Subcontract& /*entry*/) {
  collected_.forgetShares();
}

void SubcontractController::aboutToInsertSubcontract(int row) {
  row_ = row;
  const proxy::ElementGroup& rows = *entries_.getRoot();
  const proxy::ElementGroup& records = project_.subcontracts();
  if (entryModel_ != nullptr) entryModel_->beginAddItem(rows.member(row), 1, nullptr);
  if (collectModel_ != nullptr) collectModel_->beginAddItem(records.member(row), 1, nullptr);
}

void SubcontractController::subcontractInserted() {
  entries_.insertRow(row_);
  if (entryModel_ != nullptr) entryModel_->endAddItem();
  if (collectModel_ != nullptr) collectModel_->endAddItem();
}

void SubcontractController::aboutToRemoveSubcontract(int row) {
  const proxy::ElementGroup& rows = *entries_.getRoot();
  const proxy::ElementGroup& records = project_.subcontracts();
  collected_.forgetShares();
  if (entryModel_ != nullptr) entryModel_->beginDelItem(rows.member(row), 1, nullptr);
  if (collectModel_ != nullptr) collectModel_->beginDelItem(records.member(row), 1, nullptr);
  entries_.removeRow(row);
}

void SubcontractController::subcontractRemoved() {
  if (entryModel_ != nullptr) entryModel_->endDelItem();
  if (collectModel_ != nullptr) collectModel_->endDelItem();
}

void SubcontractController::aboutToMoveSubcontract(int from, int to) {
  moving_ = {from, to};
  for (auto [model, group] : {std::pair(entryModel_, entries_.getRoot()),
                              std::pair(collectModel_, collected_.getRoot())}) {
    if (model == nullptr) continue;
    // Commands move by one row; anything else is announced as a new tree.
    if (to == from - 1) {
      model->beginMoveUpItem(group->member(from), nullptr);
    } else if (to == from + 1) {
      model->beginMoveDownItem(group->member(from), nullptr);
    } else {
      model->setOperator(nullptr);
    }
  }
}

void SubcontractController::subcontractMoved() {
  const auto [from, to] = moving_;
  entries_.moveRow(from, to);
  for (auto [model, op] :
       {std::pair<abst::BaseModel*, domain::Operator*>(entryModel_, &entries_),
        std::pair<abst::BaseModel*, domain::Operator*>(collectModel_, &collected_)}) {
    if (model == nullptr) continue;
    if (to == from - 1) {
      model->endMoveUpItem();
    } else if (to == from + 1) {
      model->endMoveDownItem();
    } else {
      model->setOperator(op);
    }
  }
}

void SubcontractController::aboutToAssign(Subcontract& entry, int row) {
  if (collectModel_ != nullptr) collectModel_->beginAddItem(entry.child(row), 1, &entry);
}

void SubcontractController::assigned() {
  collected_.forgetShares();
  if (collectModel_ != nullptr) collectModel_->endAddItem();
}

void SubcontractController::aboutToUnassign(Subcontract& entry, int row) {
  collected_.forgetShares();
  if (collectModel_ != nullptr) collectModel_->beginDelItem(entry.child(row), 1, &entry);
}

void SubcontractController::unassigned() {
  collected_.forgetShares();
  if (collectModel_ != nullptr) collectModel_->endDelItem();
}

// Shares follow from the income of bills, too, and names of bills are shown.
void SubcontractController::stepFinished() {
  collected_.forgetShares();
  if (figuresChanged_) figuresChanged_();
}

}  // namespace controllers
