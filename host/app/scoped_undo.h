#pragma once

#include <string>

#include "host/app/services.h"

namespace app {

/// Everything that is written while it lives is one undo step; a nested one joins the outer.
class QCE_CONTRACT_EXPORT ScopedUndo {
 public:
  /// `name` is what the undo menu shows (UTF-8); empty leaves the naming to the host.
  explicit ScopedUndo(const std::string& name);
  ~ScopedUndo();
  ScopedUndo(const ScopedUndo&) = delete;
  ScopedUndo& operator=(const ScopedUndo&) = delete;

  /// Takes back everything that the outermost scope wrote, when that scope ends.
  void abandon();

 private:
  UndoService* service_;
};

}  // namespace app
