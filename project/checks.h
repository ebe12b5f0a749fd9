#pragma once

#include <QString>
#include <QStringList>

#include "qce_export.h"

// What makes the answers of the new-project dialog unusable. Each function answers an empty text
// when all is well, else a message for the user that names the fault and the cure.
namespace gui::qce {

/// The most UTF-16 units of a project name. With the suffixes that storage adds, even a name of
/// Chinese characters alone stays within the 255 bytes that file systems give a name.
constexpr int MaxProjectNameLength = 80;

/// Extensions of the files that a project can be made from, in capitals.
QCE_EXPORT const QStringList& SourceFileTypes();

/// A project name becomes a file name on any system.
QCE_EXPORT QString ProjectNameProblem(const QString& name);

/// Whether `path` names a file that exists, has one of the known extensions (in any case) and can
/// be read. An empty path is no fault: the project then starts from nothing.
QCE_EXPORT QString SourceFileProblem(const QString& path);

}  // namespace gui::qce
