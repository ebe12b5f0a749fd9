#pragma once

#include <QTemporaryDir>
#include <QtTest>
#include <memory>
#include <vector>

#include "host/app/scoped_undo.h"
#include "host/app/services.h"
#include "workbench/controllers/open_project.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/records/field_accessors.h"
#include "workbench/services/channels.h"
#include "workbench/store/check.h"

namespace tests {

/// The office building as a project file in a directory of its own, opened on demand, with
/// recorded messages and its undo among the services.
class ProjectFixture {
 public:
  ProjectFixture() {
    const exchange::SourceDocument source =
        exchange::SampleGenerator::officeBuilding(exchange::SourceKind::Bid);
    proxy::qce::InstallFieldAccessors(records::fieldAccessors());
    made = store::ProjectFile::create(path(), &source, {"办公楼", "投标成本测算", {}}, failure);
  }
  ~ProjectFixture() {
    close();
    app::InstallServices(before_);
  }
  ProjectFixture(const ProjectFixture&) = delete;
  ProjectFixture& operator=(const ProjectFixture&) = delete;

  QString path() const { return dir_.filePath("办公楼.qcp"); }
  QString directory() const { return dir_.path(); }

  /// Null when it cannot be opened.
  controllers::OpenProject* open() {
    close();
    opened_ = controllers::OpenProject::open(path(), failure);
    app::Services services;
    services.undo = opened_ ? &opened_->undo() : nullptr;
    services.channel = &channel;
    services.qceChannel = &channel;
    app::InstallServices(services);
    return opened_.get();
  }
  controllers::OpenProject* opened() const { return opened_.get(); }
  void close() {
    app::InstallServices({});
    opened_.reset();
  }

  records::ResourceItem& item(int unitWork, records::Category category, int row) {
    records::Project& project = opened_->project();
    const records::StructureNode& node = *project.unitWorks().at(std::size_t(unitWork));
    return *static_cast<records::ResourceItem*>(
        project.categoryGroup(node, category)->rows().at(row));
  }
  std::vector<records::ResourceItem*> items() { return itemsOf(opened_->project()); }
  static std::vector<records::ResourceItem*> itemsOf(records::Project& project) {
    std::vector<records::ResourceItem*> all;
    for (const records::StructureNode* node : project.unitWorks()) {
      const auto items = below<records::ResourceItem>(*project.subProject(*node));
      all.insert(all.end(), items.begin(), items.end());
    }
    return all;
  }

  /// The elements of one kind below another, from top to bottom.
  template <class Kind>
  static std::vector<Kind*> below(const proxy::Element& top) {
    std::vector<Kind*> found;
    for (int row = 0; row < top.childCount(); ++row) {
      if (auto* kind = dynamic_cast<Kind*>(top.child(row))) {
        found.push_back(kind);
      } else {
        const auto more = below<Kind>(*top.child(row));
        found.insert(found.end(), more.begin(), more.end());
      }
    }
    return found;
  }
  std::vector<records::Bill*> bills(int unitWork = 0) {
    return below<records::Bill>(*opened_->project().unitWorks().at(std::size_t(unitWork)));
  }

  /// The latest message; empty when there is none.
  QString message() const {
    const auto& all = channel.messages();
    return all.empty() ? QString() : QString::fromStdString(all.back().text);
  }
  /// Closes the project; what a check of its file finds, empty when all is well.
  QString checked() {
    close();
    const store::CheckReport report = store::check(path());
    return report.ok() ? QString() : report.failure.message + report.findings.join('\n') + '!';
  }

  /// As an undo step, or as part of the scope that is open.
  void setPrice(records::ResourceItem& item, int price) {
    const app::ScopedUndo undo("");
    opened_->project().set(item, records::ItemField::Price,
                           costing::PackedDecimal(costing::Decimal(price)));
  }

  bool made = false;
  store::Failure failure;
  services::RecordingChannel channel;

 private:
  QTemporaryDir dir_;
  std::unique_ptr<controllers::OpenProject> opened_;
  app::Services before_ = app::InstallServices({});
};

}  // namespace tests
