#pragma once

#include <string>
#include <vector>

#include "host/bwidgets/widget.h"
#include "qce_export.h"

class QAction;
class QCheckBox;
class QFormLayout;
class QLineEdit;
class QPushButton;

namespace gui::qce::destructors {

/// The panel with which a page narrows its tree to the rows whose fields contain the given texts.
/// It holds the conditions, knows whether they are in force, and shows and hides itself with an
/// action of the page; the page connects the buttons and check boxes.
///
/// Return and Enter click the start button, whichever box or button has the focus. A space is typed
/// into a box and presses a focused button or check box; one that nobody used ends at the panel.
class QCE_EXPORT DesFilterView : public bwidgets::Widget {
  Q_OBJECT

 public:
  enum ViewType {
    SubEngineering = 0,  ///< the fourth box is for project features; the check boxes are shown
    ResItem = 1          ///< the fourth box is for 规格型号; no check boxes, since the
                         ///< filter of resource items knows neither children nor siblings
  };

  explicit DesFilterView(ViewType viewType, bwidgets::Widget* parent = nullptr);
  ~DesFilterView() override;

  ViewType viewType() const { return viewType_; }

  // The text of one box each, UTF-8, as typed.
  std::string getCbkm() const;  ///< cost account
  std::string getCode() const;
  std::string getName() const;
  std::string getFeature() const;  ///< the fourth box, whatever its label
  std::string getUnit() const;

  /// The five texts, in the order of the getters: what a filter model is given.
  std::vector<std::string> conditions() const;

  /// Shows and hides the panel with `action`; the keyboard goes along, and back to `grid`.
  void setSwitch(QAction* action, QWidget* grid);

  /// Hands the conditions to `filter`, a filter model, and puts them in force, or takes them out of
  /// force. They stay so while the panel is hidden: the tool buttons of the action are red then.
  template <class Filter>
  void apply(Filter& filter, bool on) {
    std::vector<std::string> texts = conditions();
    if (on) filter.setFilterField(texts);
    filter.setIsFilterByCondition(on);
    setOn(on);
  }
  bool isOn() const { return on_; }

  /// Puts a text into the box of the cost account. A filter that is on stays as it is.
  void setCbkm(const std::string& text);

  /// Empties the five boxes. A filter that is on stays on.
  void resetConditions();

  // For a page to connect clicked(bool) and stateChanged(int). Never null.
  QPushButton* startButton() const { return startButton_; }
  QPushButton* cancelButton() const { return cancelButton_; }
  QPushButton* resetButton() const { return resetButton_; }
  QCheckBox* showChildrenBox() const { return showChildrenBox_; }
  QCheckBox* showSiblingBox() const { return showSiblingBox_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void setOn(bool on);
  QLineEdit* addBox(QFormLayout* form, const QString& label, const QString& name);

  ViewType viewType_;
  QAction* switch_ = nullptr;
  bool on_ = false;
  QLineEdit* cbkmEdit_ = nullptr;
  QLineEdit* codeEdit_ = nullptr;
  QLineEdit* nameEdit_ = nullptr;
  QLineEdit* featureEdit_ = nullptr;
  QLineEdit* unitEdit_ = nullptr;
  QCheckBox* showChildrenBox_ = nullptr;
  QCheckBox* showSiblingBox_ = nullptr;
  QPushButton* startButton_ = nullptr;
  QPushButton* cancelButton_ = nullptr;
  QPushButton* resetButton_ = nullptr;
};

}  // namespace gui::qce::destructors
