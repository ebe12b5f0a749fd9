#pragma once

#include <QComboBox>
#include <string>
#include <utility>
#include <vector>

#include "host/proxy/element.h"
#include "qce_export.h"

namespace gui {

/// Chooses what part of a project a page shows. Emits QComboBox::activated when the user chooses.
class QCE_EXPORT SubProjectBox : public QComboBox {
  Q_OBJECT

 public:
  using SubProjects = std::vector<std::pair<std::string, proxy::Element*>>;

  explicit SubProjectBox(QWidget* parent = nullptr);
  ~SubProjectBox() override;

  /// Offers the whole project and these parts, by their names. What was chosen stays so, known by
  /// its id; false when it has gone, and the whole project is chosen in its place.
  bool refill(const SubProjects& subProjects);
  /// What an entry stands for: null for the whole project, which is the first.
  proxy::Element* subProjectAt(int entry) const;
  proxy::Element* chosen() const { return subProjectAt(currentIndex()); }
  /// The whole project when `subProject` is not offered.
  void choose(const proxy::Element* subProject);

 private:
  std::vector<scoped_refptr<proxy::Element>> subProjects_;  // by entry, the first is null
};

}  // namespace gui
