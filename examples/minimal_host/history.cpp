#include "history.h"

#include <utility>

void History::beginScope(const std::string& /*name*/) {
  ++depth_;
}

void History::endScope() {
  if (--depth_ > 0) return;
  std::vector<Action> step = std::exchange(open_, {});
  if (std::exchange(abandoned_, false)) {
    takeBack(step);
  } else if (!step.empty()) {  // a scope that wrote nothing is no step
    steps_.push_back(std::move(step));
  }
}

void History::abandonScope() {
  abandoned_ = true;
}

void History::remember(Action takeBack) {
  open_.push_back(std::move(takeBack));
}

bool History::undo() {
  if (steps_.empty()) return false;
  std::vector<Action> step = std::move(steps_.back());
  steps_.pop_back();
  takeBack(step);
  return true;
}

void History::takeBack(std::vector<Action>& step) {
  for (auto action = step.rbegin(); action != step.rend(); ++action) (*action)();
}
