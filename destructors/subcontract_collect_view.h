#pragma once

#include <cstdint>
#include <vector>

#include "framework/base_page.h"
#include "qce_export.h"

class QAction;
class QPushButton;

namespace abst::qce::destructors {
class DesSetSubcontractView;
}
namespace gui {
class TreeGridView;
}
namespace proxy {
class Element;
}

namespace gui::qce::destructors {

/// The collection tree of the subcontract setting page: the entries with the bills that they
/// gather, below the button "应用到其他清单". Its model (setModel) is an
/// abst::qce::destructors::DesSetSubcontractCollectModel that is a QAbstractItemModel too.
class QCE_EXPORT DesSetSubcontractCollectViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesSetSubcontractCollectViewImpl(QWidget* parent = nullptr);
  ~DesSetSubcontractCollectViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void setAbstractView(abst::qce::destructors::DesSetSubcontractView* view);  ///< not owned

  /// Makes the entry with this id current, unless one of its bills is; opens it where it was
  /// closed.
  void showEntry(std::int64_t id);
  gui::TreeGridView* tree() const { return tree_; }

 public slots:
  void applyToOtherBills();
  void removeBills();

 signals:
  /// Another entry, or a bill of another one, is current.
  void entryChosen(std::int64_t id);

 protected:
  void onModelReset() override;

 private:
  /// The selected rows that stand below an entry.
  std::vector<proxy::Element*> selectedBills() const;
  void moveBills(std::int64_t entry);
  void showContextMenu(const QPoint& at);
  void onCurrentElement(proxy::Element* element);

  abst::qce::destructors::DesSetSubcontractView* view_ = nullptr;
  gui::TreeGridView* tree_ = nullptr;
  QAction* removeAction_ = nullptr;
  QAction* applyAction_ = nullptr;
};

}  // namespace gui::qce::destructors
