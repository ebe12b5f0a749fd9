#pragma once

#include <QObject>
#include <QString>
#include <QUndoStack>
#include <functional>

#include "host/app/services.h"
#include "workbench/records/project.h"

namespace services {

/// The undo steps of one project: the outermost app::ScopedUndo is one command of the stack and one
/// storage transaction, and so is each undo and redo. A transaction that fails is taken back in
/// memory, with a message through app::GetChannel().
class UndoHistory : public QObject, public app::UndoService {
  Q_OBJECT

 public:
  /// Stores what the changes have left in the records; false with a message when that failed.
  using Commit = std::function<bool(const records::ChangeSet& changes, QString& message)>;

  /// The project must outlive the history.
  UndoHistory(records::Project& project, Commit commit);
  ~UndoHistory() override;

  void beginScope(const std::string& name) override;
  void endScope() override;
  void abandonScope() override;

  /// For menus: canUndo, undoText, createUndoAction, undo, redo. Push nothing to it.
  QUndoStack* stack() { return &stack_; }

 private:
  class Step;

  bool applyStep(const records::ChangeSet& changes, records::Project::Direction direction);
  void restoreIndex();
  void tell(const QString& reason);

  records::Project& project_;
  Commit commit_;
  QUndoStack stack_;
  QString name_;
  int depth_ = 0;
  bool abandoned_ = false;
  bool skip_ = false;    // the records are already as the command would leave them
  bool failed_ = false;  // the step that the stack is about to count was taken back
  int done_ = 0;         // how many of the stack's commands the records have
};

}  // namespace services
