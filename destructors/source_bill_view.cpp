#include "destructors/source_bill_view.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace gui::qce::destructors {

namespace {

QString nameOf(const abst::qce::destructors::SourceBill& bill) {
  return QString::fromStdString(bill.code + " " + bill.name).trimmed();
}

}  // namespace

DesSourceBillView::DesSourceBillView(QWidget* parent)
    : Widget(parent), label_(new QLabel(this)), list_(new QTreeWidget(this)) {
  label_->setObjectName("DesSourceBill_current");
  label_->setWordWrap(true);
  list_->setObjectName("DesSourceBill_list");
  list_->setHeaderLabels({"清单编码", "清单名称", "单位", "工程量", "项目特征"});
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAlternatingRowColors(true);
  const int widths[] = {120, 150, 46, 80};
  for (int column = 0; column < 4; ++column) list_->header()->resizeSection(column, widths[column]);
  connect(list_, &QTreeWidget::currentItemChanged, this, [this] {
    showCurrent();
    emit currentBillChanged();
  });
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label_);
  layout->addWidget(list_, 1);
  showCurrent();
}

DesSourceBillView::~DesSourceBillView() = default;

void DesSourceBillView::setBills(const Bills& bills) {
  list_->clear();
  bills_ = bills;
  for (const auto& bill : bills_) {
    auto* row = new QTreeWidgetItem(list_);
    int column = 0;
    for (const std::string* text :
         {&bill.code, &bill.name, &bill.unit, &bill.quantity, &bill.features}) {
      // One line a row; the whole text stands in the tool tip.
      row->setText(column, QString::fromStdString(*text).simplified());
      row->setToolTip(column++, QString::fromStdString(*text));
    }
    row->setTextAlignment(3, int(Qt::AlignRight | Qt::AlignVCenter));
  }
  list_->setCurrentItem(list_->topLevelItem(0));
  showCurrent();
}

const abst::qce::destructors::SourceBill* DesSourceBillView::currentBill() const {
  const int row = list_->indexOfTopLevelItem(list_->currentItem());
  return row >= 0 && row < static_cast<int>(bills_.size()) ? &bills_[static_cast<std::size_t>(row)]
                                                           : nullptr;
}

QString DesSourceBillView::caption(const Bills& bills) {
  if (bills.empty()) return "当前清单：（无）";
  const QString first = "当前清单：" + nameOf(bills.front());
  return bills.size() == 1 ? first : first + QString("（共 %1 条清单）").arg(bills.size());
}

void DesSourceBillView::showCurrent() {
  const auto* bill = currentBill();
  label_->setText("当前清单：" + (bill != nullptr ? nameOf(*bill) : "（无）"));
}

}  // namespace gui::qce::destructors
