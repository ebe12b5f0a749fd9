#pragma once

#include "qce_export.h"

namespace gui {

/// Pairs the begin and end announcements of a model. An announcement that Qt refused, or that
/// made no sense, is not ended either; an end without its begin is logged and ignored.
class QCE_EXPORT RowAnnouncer {
 public:
  enum class Change { None, Add, Remove, MoveUp, MoveDown };

  /// Whether `change` may begin now. True is followed by a call of began().
  bool mayBegin(Change change);
  /// Tells whether Qt was told, that is whether the end has to be told as well.
  void began(Change change, bool announced);
  /// Whether Qt has to be told that `change` is done.
  bool end(Change change);

 private:
  Change open_ = Change::None;
  bool announced_ = false;
};

}  // namespace gui
