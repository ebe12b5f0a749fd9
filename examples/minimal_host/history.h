#pragma once

#include <host/app/services.h>

#include <functional>
#include <vector>

/// The host's undo: each outermost scope is one step. A step is a list of actions that take it
/// back.
class History : public app::UndoService {
 public:
  using Action = std::function<void()>;

  void beginScope(const std::string& name) override;
  void endScope() override;
  void abandonScope() override;

  /// Adds to the step that is open.
  void remember(Action takeBack);
  /// Takes the last step back; false when there is none.
  bool undo();

 private:
  static void takeBack(std::vector<Action>& step);

  int depth_ = 0;
  bool abandoned_ = false;
  std::vector<Action> open_;
  std::vector<std::vector<Action>> steps_;
};
