#pragma once

#include <QString>
#include <functional>

#include "workbench/exchange/source_document.h"

namespace exchange {

/// Makes source files to try the program with: one realistic office building, and synthetic files
/// of any size. The same input always gives the same bytes.
class SampleGenerator {
 public:
  static constexpr qint64 MostResources = 5000000;

  /// Resource items written so far; false cancels.
  using Progress = std::function<bool(qint64 done)>;

  /// 办公楼: an office building of six unit works, as a file of `kind` carries it.
  static SourceDocument officeBuilding(SourceKind kind);
  /// Writes 办公楼 in all six kinds into `folder`. Answers a Chinese reason, empty when written.
  static QString writeOfficeBuilding(const QString& folder);

  /// Writes a source file of the kind that the extension of `path` says, holding exactly
  /// `resources` (1 to MostResources) resource items, nearly all of them with a code of their own.
  /// Streams: memory does not grow with the size. The file appears whole or not at all. Answers a
  /// Chinese reason, empty when written.
  static QString generate(qint64 resources, quint64 seed, const QString& path,
                          const Progress& progress = {});
};

}  // namespace exchange
