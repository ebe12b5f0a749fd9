#pragma once

#include <QString>
#include <QStringList>

#include "workbench/store/failure.h"

namespace store {

/// What a check of a project file found.
struct CheckReport {
  Failure failure;       ///< kind None: the file could be opened and read
  QStringList findings;  ///< Chinese, one a fault; empty when all is well
  QString money;         ///< money declared, read and stored, one line each
  qint64 resourceItems = 0;
  bool ok() const { return failure.kind == FailureKind::None && findings.isEmpty(); }
};

/// Checks the file's integrity and references, computes every stored total again from its parts,
/// and compares money declared, money read and money stored to the cent. Changes nothing.
CheckReport check(const QString& path);

}  // namespace store
