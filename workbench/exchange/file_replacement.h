#pragma once

#include <QString>

class QIODevice;

namespace exchange {

/// Makes `content` (open for reading, taken from where it stands) the content of the file `path`.
/// It is written beside the target and put in its place at the end, so that there is always either
/// the old file or the new one. Answers an empty text, or a message for the user that names the
/// place and the cure; the old file is then untouched.
QString replaceFile(QIODevice& content, const QString& path);

/// Why replaceFile cannot succeed, as far as can be told beforehand; empty when nothing speaks
/// against it. Cheap, so that no long work is done for nothing.
QString replacementProblem(const QString& path);

}  // namespace exchange
