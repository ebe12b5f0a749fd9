#include "host/presentation/quantity_detail_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "host/app/services.h"
#include "host/base/number_text.h"

namespace gui {
namespace {

enum Column { Remark, Expression, Result, ColumnCount };
constexpr int Places = 4;
const QColor refusedText(0xc6, 0x28, 0x28);

QString shown(double value) {
  return QString::fromStdString(base::ToPlainStringWithStripTrailingZeros(value, Places));
}

}  // namespace

QuantityDetailDialog::QuantityDetailDialog(const QString& bill, const QString& unit,
                                           const domain::QuantityLines& lines, Evaluate evaluate,
                                           Apply apply, QWidget* parent)
    : Dialog(parent),
      unit_(unit),
      before_(lines),
      evaluate_(std::move(evaluate)),
      apply_(std::move(apply)) {
  setWindowTitle("工程量明细");
  setObjectName("QuantityDetailDialog");

  auto* caption = new QLabel(bill, this);
  caption->setWordWrap(true);
  auto* hint =
      new QLabel("每行填写说明和计算式，各行数值之和为成本工程量；没有明细时取招标工程量。", this);
  hint->setWordWrap(true);

  table_ = new QTableWidget(0, ColumnCount, this);
  table_->setObjectName("QuantityDetail_table");
  table_->setHorizontalHeaderLabels({"说明", "计算式", "数值"});
  table_->horizontalHeader()->setSectionResizeMode(Remark, QHeaderView::Interactive);
  table_->horizontalHeader()->setSectionResizeMode(Expression, QHeaderView::Stretch);
  table_->setColumnWidth(Remark, 180);
  table_->setColumnWidth(Result, 110);
  table_->setAlternatingRowColors(true);
  table_->setEditTriggers(QAbstractItemView::AllEditTriggers);

  auto* addButton = new QPushButton("添加行", this);
  addButton->setObjectName("QuantityDetail_add");
  auto* removeButton = new QPushButton("删除行", this);
  removeButton->setObjectName("QuantityDetail_remove");
  for (QPushButton* button : {addButton, removeButton}) button->setAutoDefault(false);
  connect(addButton, &QPushButton::clicked, this, &QuantityDetailDialog::insertLine);
  connect(removeButton, &QPushButton::clicked, this, &QuantityDetailDialog::removeLine);
  sum_ = new QLabel(this);
  sum_->setObjectName("QuantityDetail_sum");
  auto* tools = new QHBoxLayout;
  tools->addWidget(addButton);
  tools->addWidget(removeButton);
  tools->addStretch();
  tools->addWidget(sum_);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(caption);
  layout->addWidget(hint);
  layout->addWidget(table_, 1);
  layout->addLayout(tools);
  layout->addWidget(createButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
  resize(620, 380);

  for (const domain::QuantityLine& line : lines) addLine(line);
  if (lines.empty()) addLine({});
  recompute();
  connect(table_, &QTableWidget::itemChanged, this, &QuantityDetailDialog::recompute);
  table_->setCurrentCell(0, lines.empty() ? Remark : Expression);
  table_->setFocus();
}

QuantityDetailDialog::~QuantityDetailDialog() = default;

void QuantityDetailDialog::addLine(const domain::QuantityLine& line) {
  const QSignalBlocker quiet(table_);
  const int row = table_->rowCount();
  table_->insertRow(row);
  table_->setItem(row, Remark, new QTableWidgetItem(QString::fromStdString(line.remark)));
  table_->setItem(row, Expression, new QTableWidgetItem(QString::fromStdString(line.expression)));
  auto* result = new QTableWidgetItem;
  result->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
  result->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
  table_->setItem(row, Result, result);
}

void QuantityDetailDialog::insertLine() {
  addLine({});
  recompute();
  table_->setCurrentCell(table_->rowCount() - 1, Remark);
  table_->setFocus();
}

void QuantityDetailDialog::removeLine() {
  if (table_->currentRow() < 0) return;
  table_->removeRow(table_->currentRow());
  if (table_->rowCount() == 0) addLine({});
  recompute();
}

domain::QuantityLines QuantityDetailDialog::lines() const {
  domain::QuantityLines found;
  for (int row = 0; row < table_->rowCount(); ++row) {
    const QString remark = table_->item(row, Remark)->text().trimmed();
    const QString expression = table_->item(row, Expression)->text().trimmed();
    if (remark.isEmpty() && expression.isEmpty()) continue;
    found.push_back({remark.toStdString(), expression.toStdString()});
  }
  return found;
}

void QuantityDetailDialog::recompute() {
  const QSignalBlocker quiet(table_);
  double sum = 0.0;
  bool complete = true;
  for (int row = 0; row < table_->rowCount(); ++row) {
    const QString expression = table_->item(row, Expression)->text().trimmed();
    QTableWidgetItem* result = table_->item(row, Result);
    double value = 0.0;
    std::string error;
    const bool valued = !expression.isEmpty() && evaluate_(expression.toStdString(), value, error);
    const bool wrong = !expression.isEmpty() && !valued;
    result->setText(wrong ? QString("有误") : valued ? shown(value) : QString());
    result->setToolTip(QString::fromStdString(error));
    table_->item(row, Expression)->setToolTip(QString::fromStdString(error));
    const QColor color = wrong ? refusedText : table_->palette().color(QPalette::Text);
    result->setForeground(color);
    table_->item(row, Expression)->setForeground(color);
    complete = complete && !wrong;
    sum += value;
  }
  sum_->setText(complete ? QString("合计: %1 %2").arg(shown(sum), unit_).trimmed()
                         : QString("合计: 有计算式不能计算"));
  table_->viewport()->update();
}

void QuantityDetailDialog::accept() {
  // An editor that is still open holds what was typed last.
  if (QWidget* editor = table_->focusWidget(); editor != nullptr && editor != table_) {
    table_->setFocus();
  }
  for (int row = 0; row < table_->rowCount(); ++row) {
    const QString expression = table_->item(row, Expression)->text().trimmed();
    double value = 0.0;
    std::string error;
    if (expression.isEmpty() || evaluate_(expression.toStdString(), value, error)) continue;
    const QString text = QString("第 %1 行的计算式“%2”：%3")
                             .arg(row + 1)
                             .arg(expression, QString::fromStdString(error));
    app::qce::GetQCEChannel()->message(text.toStdString(), QMessageBox::Ok);
    table_->setCurrentCell(row, Expression);
    table_->setFocus();
    return;
  }
  const domain::QuantityLines now = lines();
  if (now == before_ || apply_(now)) Dialog::accept();
}

// Return ends the editing of a cell; it must not confirm the dialog as well.
void QuantityDetailDialog::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && !event->modifiers().testFlag(Qt::ControlModifier) &&
      table_->isAncestorOf(focusWidget())) {
    const int row = table_->currentRow();
    if (row + 1 == table_->rowCount()) {
      insertLine();
    } else {
      table_->setCurrentCell(row + 1, table_->currentColumn());
    }
    return;
  }
  Dialog::keyPressEvent(event);
}

}  // namespace gui
