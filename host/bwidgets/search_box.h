#pragma once

#include <QFrame>
#include <QModelIndex>
#include <vector>

#include "host/bwidgets/text_matcher.h"

class QLabel;
class QLineEdit;
class QTimer;
class QToolButton;

namespace bwidgets {

class TreeGridView;

/// Finds texts in a grid: the display texts of all shown columns of all rows, rows below collapsed
/// ones included, by a part of the text or by pinyin initials. Stands above the grid's titles,
/// which make room for it, so that it hides nothing. Return and F3 go to the next match, with Shift
/// to the one before, round the end; Esc closes. The current match is the grid's current cell.
class QCE_HOST_WIDGETS_EXPORT SearchBox : public QFrame {
  Q_OBJECT

 public:
  explicit SearchBox(TreeGridView* grid);

  QLineEdit* lineEdit() const { return edit_; }
  QLabel* countLabel() const { return count_; }
  void open();
  void findNext();
  void findPrevious();
  /// How many cells match, and which of them the current cell is (from 1; 0 for none).
  int matchCount();
  int currentMatch();
  /// Whether a cell's text is to be marked: the box is open and the text matches.
  bool marks(const QString& text) const { return isVisible() && matcher_.matches(text); }

  /// The grid has got another model.
  void watchModel();
  /// Goes to its place over the grid.
  void place();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void wishChanged();
  void find(bool forward, bool stay);
  void collect();
  void markStale();
  void showCount();
  int firstAtOrAfter(const QModelIndex& current) const;
  template <class Visit>
  bool walk(const QModelIndex& parent, Visit visit) const;

  TreeGridView* grid_;
  QLineEdit* edit_;
  QLabel* count_;
  QToolButton* previous_;
  QToolButton* next_;
  QTimer* typing_;
  QTimer* recount_;
  TextMatcher matcher_;
  std::vector<QModelIndex> matches_;  // in the order of the tree; void once stale_
  bool stale_ = true;
  std::vector<QMetaObject::Connection> connections_;
};

}  // namespace bwidgets
