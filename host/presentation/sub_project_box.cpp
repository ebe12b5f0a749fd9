#include "host/presentation/sub_project_box.h"

#include <algorithm>

namespace gui {

SubProjectBox::SubProjectBox(QWidget* parent) : QComboBox(parent) {
  setToolTip("选择要显示的工程范围");
  setMinimumContentsLength(10);
  setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
  refill({});
}

SubProjectBox::~SubProjectBox() = default;

bool SubProjectBox::refill(const SubProjects& subProjects) {
  const scoped_refptr<proxy::Element> before = chosen();
  clear();
  subProjects_.assign(1, nullptr);
  addItem("整个项目");
  for (const auto& [name, element] : subProjects) {
    subProjects_.emplace_back(element);
    addItem(QString::fromStdString(name));
    if (before && element != nullptr && element->id() == before->id()) {
      setCurrentIndex(count() - 1);
    }
  }
  return !before || currentIndex() > 0;
}

proxy::Element* SubProjectBox::subProjectAt(int entry) const {
  const auto number = static_cast<std::size_t>(std::max(entry, 0));
  return number < subProjects_.size() ? subProjects_[number].get() : nullptr;
}

void SubProjectBox::choose(const proxy::Element* subProject) {
  int entry = 0;
  for (std::size_t i = 1; subProject != nullptr && i < subProjects_.size(); ++i) {
    if (subProjects_[i].get() == subProject) entry = static_cast<int>(i);
  }
  setCurrentIndex(entry);
}

}  // namespace gui
