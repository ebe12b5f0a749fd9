#include "framework/row_announcer.h"

#include "host/base/log.h"

namespace gui {

bool RowAnnouncer::mayBegin(Change /*change*/) {
  if (open_ == Change::None) return true;
  base::LogError("a row change was announced inside another one and is ignored");
  return false;
}

void RowAnnouncer::began(Change change, bool announced) {
  open_ = change;
  announced_ = announced;
}

bool RowAnnouncer::end(Change change) {
  if (open_ != change) {
    base::LogError("the end of a row change was announced without its beginning");
    return false;
  }
  open_ = Change::None;
  return announced_;
}

}  // namespace gui
