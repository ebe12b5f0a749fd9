#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>

class QWidget;

namespace shell {

/// A modal progress dialog with "取消" over long work on the GUI thread; it comes up after a moment
/// and keeps the event loop alive.
class Progress {
 public:
  Progress(QWidget* parent, const QString& text);

  /// Shows another text, for a stage whose end is not known.
  void setStage(const QString& text);
  /// Of `total` units `done` are done (a total of 0: unknown). False when the user has cancelled.
  bool step(qint64 done, qint64 total);

 private:
  QProgressDialog dialog_;
  QElapsedTimer sinceShown_;
};

}  // namespace shell
