#include "resitem/legend.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>

#include "host/domain/qce/res_item_marks.h"

namespace gui::qce {
namespace {

QLabel* createMark(const QString& text, const QString& toolTip, QPalette::ColorRole role,
                   const base::Color& color, QWidget* parent) {
  auto* label = new QLabel(text, parent);
  label->setToolTip(toolTip);
  label->setContentsMargins(6, 1, 6, 1);
  label->setAutoFillBackground(true);
  QPalette palette = label->palette();
  palette.setColor(QPalette::Window, palette.color(QPalette::Base));
  palette.setColor(role, QColor(color.r, color.g, color.b));
  label->setPalette(palette);
  return label;
}

}  // namespace

ResItemLegend::ResItemLegend(QWidget* parent) : QWidget(parent) {
  namespace marks = domain::qce::marks;
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(4);
  layout->addWidget(new QLabel("图例:", this));
  layout->addWidget(
      createMark("甲供", "底色：由甲方供应的项", QPalette::Window, marks::ProvidedByJia, this));
  layout->addWidget(
      createMark("暂估", "字色：价格为暂估价的项", QPalette::WindowText, marks::Provisional, this));
  layout->addWidget(createMark("不计入", "字色：未关联到成本，或已归集到分包的项，成本合价为 0",
                               QPalette::WindowText, marks::NotCounted, this));
  layout->addWidget(createMark("批注", "名称底色：带批注的项，鼠标停留可查看批注", QPalette::Window,
                               marks::Annotated, this));
}

}  // namespace gui::qce
