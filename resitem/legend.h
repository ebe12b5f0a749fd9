#pragma once

#include <QWidget>

namespace gui::qce {

/// Says what the marks in the resource-item grid mean, in the colours that the grid shows.
class ResItemLegend : public QWidget {
  Q_OBJECT

 public:
  explicit ResItemLegend(QWidget* parent = nullptr);
};

}  // namespace gui::qce
