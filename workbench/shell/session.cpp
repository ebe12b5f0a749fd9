#include "workbench/shell/session.h"

#include <QUndoStack>
#include <QWidget>
#include <algorithm>

#include "host/base/number_text.h"
#include "workbench/controllers/open_project.h"

namespace shell {

namespace {

QString money(const costing::Decimal& value) {
  return QString::fromStdString(base::ToThousandthsString(value.toDouble(), 2));
}

}  // namespace

std::unique_ptr<Session> Session::open(const QString& path, store::Failure& failure,
                                       const ReportProgress& progress) {
  auto project = controllers::OpenProject::open(path, failure, progress);
  if (!project) return nullptr;
  return std::unique_ptr<Session>(new Session(std::move(project)));
}

Session::Session(std::unique_ptr<controllers::OpenProject> project) : project_(std::move(project)) {
  project_->resItemController().setTotalsChanged([this] { emit changed(); });
}

Session::~Session() {
  project_->resItemController().setTotalsChanged({});
}

QString Session::path() const {
  return project_->path();
}

QString Session::name() const {
  return QString::fromStdString(project_->facts().name);
}

QString Session::type() const {
  return QString::fromStdString(project_->facts().costType);
}

Session::Totals Session::totals() const {
  const costing::Totals& sums = project_->totals();
  const records::Project& project = project_->project();
  const bool none = project.subcontracts().size() == 0;
  return {money(sums.budget),
          money(sums.excluded),
          money(sums.included),
          money(project.feeTotal()),
          none ? QString() : money(project.subcontractTotals().excluded),
          project.itemCount()};
}

bool Session::saveCopy(const QString& path, store::Failure& failure) {
  return project_->saveCopy(path, failure);
}

QUndoStack& Session::undoStack() {
  return *project_->undo().stack();
}

app::UndoService& Session::undoService() {
  return project_->undo();
}

const std::vector<Page>& Session::makePages() {
  for (const PageMaker& make : pageMakers()) pages_.push_back(make(*this));
  return pages_;
}

const Page* Session::page(const QString& key) const {
  const auto found = std::find_if(pages_.begin(), pages_.end(),
                                  [&key](const Page& page) { return page.key == key; });
  return found != pages_.end() ? &*found : nullptr;
}

const Page* Session::pageTitled(const QString& title) const {
  const auto found = std::find_if(pages_.begin(), pages_.end(),
                                  [&title](const Page& page) { return page.title == title; });
  return found != pages_.end() ? &*found : nullptr;
}

void Session::dropPages() {
  pages_.clear();
}

}  // namespace shell
