#pragma once

#include <vector>

#include "framework/base_page.h"
#include "qce_export.h"

class QAction;

namespace abst::qce::destructors {
class DesSetSubcontractView;
}
namespace bwidgets {
class TableView;
}
namespace proxy {
class Element;
}

namespace gui::qce::destructors {

/// The table of subcontract entries with the commands about them, which are its actions(). Its
/// model (setModel) is an abst::qce::destructors::DesSetSubcontractModel that is a
/// QAbstractItemModel too.
///
/// Delete removes entries whose whole rows are selected; on other cells it clears what can be
/// edited, as in every grid.
class QCE_EXPORT DesSetSubcontractTableViewImpl : public gui::BasePage {
  Q_OBJECT

 public:
  explicit DesSetSubcontractTableViewImpl(QWidget* parent = nullptr);
  ~DesSetSubcontractTableViewImpl() override;

  void setModel(abst::BaseModel* model) override;
  void setAbstractView(abst::qce::destructors::DesSetSubcontractView* view);  ///< not owned

  proxy::Element* currentElement() const;
  /// Makes the row with this id current, where there is one.
  void setCurrentElement(std::int64_t id);
  bwidgets::TableView* table() const { return table_; }

 public slots:
  void addSubcontract();
  void addFromBase();
  void duplicateSubcontracts();
  void removeSubcontracts();
  /// The selected entries by one row, as one undo step.
  void moveUp();
  void moveDown();
  /// Lets the user choose the file of the current entry's contract; its path is what is kept.
  void chooseAttachment();
  /// Lets the host save the table as a spreadsheet.
  void exportExcel();

 private:
  using Move = bool (abst::qce::destructors::DesSetSubcontractView::*)(proxy::Element*);
  void moveEntries(Move command, bool down);
  void onDelete();
  bool wholeRowsSelected() const;
  void showContextMenu(const QPoint& at);
  void show(const std::vector<proxy::Element*>& entries);

  abst::qce::destructors::DesSetSubcontractView* view_ = nullptr;
  bwidgets::TableView* table_ = nullptr;
  std::vector<QAction*> commands_;
};

}  // namespace gui::qce::destructors
