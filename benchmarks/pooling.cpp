#include "benchmarks/pooling.h"

#include <QApplication>
#include <QTimer>
#include <chrono>
#include <vector>

#include "host/domain/field_keys.h"
#include "pooling/notional_pooling_filter_model.h"
#include "pooling/notional_pooling_model.h"
#include "pooling/notional_pooling_view.h"
#include "workbench/controllers/notional_pooling_controller.h"
#include "workbench/operators/notional_pooling_operator.h"
#include "workbench/records/field_accessors.h"
#include "workbench/records/project_builder.h"

namespace bench {
namespace {

using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

class Model : public gui::qce::QCENotionalPoolingModelImpl {
 public:
  void announce(const QModelIndex& cell) { emit dataChanged(cell, cell, {Qt::CheckStateRole}); }
};

}  // namespace

struct Pooling::Parts {
  records::Project project;
  records::ResourceItem* item = nullptr;
  std::vector<proxy::Element*> bills;
  std::unique_ptr<controllers::NotionalPoolingController> controller;
  std::unique_ptr<Dialog> dialog;
};

/// The dialog as the reference host sets it up, shown without waiting for the user.
struct Pooling::Dialog {
  explicit Dialog(Parts& parts) : op(parts.project), table(operators::makeNotionalPoolingTable()) {
    model.setDisplayTable(table.get());
    model.setOperator(&op);
    filter.setSubEngineerBills(parts.bills);
    view.setModel(&filter);
    view.setCurrentQCEGLJItem(parts.item);
    view.setAssociatedBills(parts.bills);
    filter.setCurrentSubEngBill(parts.bills.front());
    view.show();
    QCoreApplication::processEvents();
    column = model.getColumnIndex(domain::keys::NPChoose);
    top = model.index(0, column);
    for (int row = 0; row < model.rowCount(top); ++row)
      cells.push_back(model.index(row, column, top));
    cells.push_back(top);
  }

  operators::NotionalPoolingOperator op;
  std::unique_ptr<domain::DisplayTable> table;
  Model model;
  gui::qce::QCENotionalPoolingFilterModelImpl filter{&model};
  gui::qce::QCENotionalPoolingViewImpl view;
  int column = 0;
  QModelIndex top;
  std::vector<QModelIndex> cells;
};

Pooling::Pooling(int bills, int itemsPerBill) : parts_(std::make_unique<Parts>()) {
  proxy::qce::InstallFieldAccessors(records::fieldAccessors());
  records::Project& project = parts_->project;
  records::ProjectBuilder builder(project);
  records::StructureNode& work = builder.addNode(nullptr, 0, records::StructureKind::UnitWork);
  records::StructureNode& section = builder.addNode(&work, 0, records::StructureKind::Section);
  records::ResourceItemData data;
  data.code = project.texts.intern("CL0001");
  data.name = project.texts.intern("中砂");
  data.price = 100;
  parts_->item = &builder.addItem(work, data);
  for (int b = 0; b < bills; ++b) {
    records::Bill& bill = builder.addBill(section, 0);
    bill.code = project.texts.intern("0101" + std::to_string(10000000 + b));
    bill.name = project.texts.intern("清单 " + std::to_string(b));
    bill.unit = project.texts.intern("m3");
    bill.quantity = costing::Decimal(100 + b % 900);
    for (int i = 0; i < itemsPerBill; ++i) {
      records::BudgetItem& item = builder.addBudgetItem(bill, 0);
      item.code = project.texts.intern("CL" + std::to_string(1000 + i));
      item.name = project.texts.intern("材料 " + std::to_string(i));
      item.unit = project.texts.intern("t");
      item.content = costing::Decimal::fromDigits(1015 + i % 100, 3);
      item.price = costing::Decimal(100);
      item.amount = costing::budgetAmount(bill.quantity.value(), item.content.value(), 100);
      builder.gather(item, *parts_->item);
    }
    parts_->bills.push_back(&bill);
  }
  parts_->controller = std::make_unique<controllers::NotionalPoolingController>(project);
}

Pooling::~Pooling() = default;

double Pooling::open() {
  double took = -1;
  const auto start = Clock::now();
  QTimer::singleShot(0, [&] {
    QWidget* dialog = QApplication::activeModalWidget();
    if (dialog == nullptr) return;  // a message instead: nothing was measured
    dialog->repaint();
    took = since(start);
    dialog->close();
  });
  parts_->controller->openPooling(parts_->item, parts_->bills, true);
  if (took < 0) qFatal("the pooling dialog did not open");
  return took;
}

double Pooling::check() {
  if (!parts_->dialog) parts_->dialog = std::make_unique<Dialog>(*parts_);
  Dialog& dialog = *parts_->dialog;
  const auto start = Clock::now();
  dialog.model.setData(dialog.top, Qt::Checked, Qt::CheckStateRole);
  const double took = since(start);
  dialog.model.setData(dialog.top, Qt::Unchecked, Qt::CheckStateRole);
  QCoreApplication::processEvents();
  return took;
}

double Pooling::announce() {
  if (!parts_->dialog) parts_->dialog = std::make_unique<Dialog>(*parts_);
  Dialog& dialog = *parts_->dialog;
  const auto start = Clock::now();
  for (const QModelIndex& cell : dialog.cells) dialog.model.announce(cell);
  const double took = since(start);
  QCoreApplication::processEvents();
  return took;
}

}  // namespace bench
