#include "workbench/services/undo_history.h"

#include <QMessageBox>
#include <QUndoCommand>
#include <utility>

#include "host/base/log.h"

namespace services {

using records::ChangeSet;
using Direction = records::Project::Direction;

class UndoHistory::Step : public QUndoCommand {
 public:
  Step(UndoHistory& history, const QString& name, ChangeSet changes)
      : QUndoCommand(name), history_(history), changes_(std::move(changes)) {}

  void undo() override { run(Direction::Backward); }
  void redo() override { run(Direction::Forward); }

 private:
  void run(Direction direction) {
    if (history_.skip_ || history_.failed_) return;
    if (history_.applyStep(changes_, direction)) {
      history_.done_ += direction == Direction::Forward ? 1 : -1;
    } else {
      // The stack goes on to count the step as done; it is set back once it has.
      history_.failed_ = true;
    }
  }

  UndoHistory& history_;
  ChangeSet changes_;
};

UndoHistory::UndoHistory(records::Project& project, Commit commit)
    : project_(project), commit_(std::move(commit)) {
  connect(&stack_, &QUndoStack::indexChanged, this, &UndoHistory::restoreIndex);
}

UndoHistory::~UndoHistory() = default;

void UndoHistory::beginScope(const std::string& name) {
  if (depth_++ == 0) {
    abandoned_ = false;
    name_.clear();
  }
  if (name_.isEmpty()) name_ = QString::fromStdString(name);
}

void UndoHistory::abandonScope() {
  if (depth_ > 0) abandoned_ = true;
}

void UndoHistory::endScope() {
  if (depth_ == 0) {
    base::LogError("undo scope ended without a beginning");
    return;
  }
  if (--depth_ > 0) return;
  ChangeSet changes = project_.takeRecorded();
  if (changes.empty()) return;
  QString reason;
  if (abandoned_ || !commit_(changes, reason)) {
    project_.apply(changes, Direction::Backward);
    project_.finishStep();
    if (!abandoned_) tell(reason);
    return;
  }
  if (name_.isEmpty()) name_ = QString::fromStdString(records::describe(changes));
  skip_ = true;  // push() does the command, which is done already
  stack_.push(new Step(*this, name_, std::move(changes)));
  skip_ = false;
  done_ = stack_.index();
  project_.finishStep();
}

bool UndoHistory::applyStep(const ChangeSet& changes, Direction direction) {
  if (depth_ > 0) {
    base::LogError("undo and redo are refused inside an edit");
    return false;
  }
  const Direction back = direction == Direction::Forward ? Direction::Backward : Direction::Forward;
  project_.apply(changes, direction);
  QString reason;
  const bool stored = commit_(changes, reason);
  if (!stored) project_.apply(changes, back);
  project_.finishStep();
  if (!stored) tell(reason);
  return stored;
}

void UndoHistory::restoreIndex() {
  if (!failed_) return;
  failed_ = false;
  skip_ = true;
  stack_.setIndex(done_);
  skip_ = false;
}

void UndoHistory::tell(const QString& reason) {
  app::GetChannel()->message(reason.toStdString(), QMessageBox::Ok);
}

}  // namespace services
