#include "host/app/scoped_undo.h"

namespace app {

ScopedUndo::ScopedUndo(const std::string& name) : service_(GetUndoService()) {
  service_->beginScope(name);
}

ScopedUndo::~ScopedUndo() {
  service_->endScope();
}

void ScopedUndo::abandon() {
  service_->abandonScope();
}

}  // namespace app
