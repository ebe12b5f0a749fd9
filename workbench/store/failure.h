#pragma once

#include <QString>

namespace store {

/// Why a project file could not be opened or created.
enum class FailureKind {
  None,
  Missing,       ///< there is no such file
  NotAProject,   ///< it is something else
  Newer,         ///< written by a newer version of the program
  Damaged,       ///< its content does not hold together
  Locked,        ///< open in another running program
  NoPermission,  ///< it may not be read and written
  Exists,        ///< creating would replace a file
  Cancelled,     ///< by the user
  Unwritable,    ///< disk full and the like
};

/// `message` is for the user, in Chinese: what is wrong, with which file, and the cure.
struct Failure {
  FailureKind kind = FailureKind::None;
  QString message;
};

}  // namespace store
