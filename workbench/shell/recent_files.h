#pragma once

#include <QString>
#include <vector>

namespace shell {

/// One project that was opened lately.
struct RecentFile {
  QString path;    ///< absolute
  QString locale;  ///< of the project's texts, for example "zh_CN"
};

/// The recent projects, latest first, in the file "/recent_file.json" of the data directory: an
/// array under "RecentFile" whose entries have "path" and "locale".
class RecentFiles {
 public:
  static constexpr std::size_t kMost = 12;

  /// Reads the list; a file that cannot be understood is set aside and the list starts empty.
  explicit RecentFiles(const QString& dataDirectory);

  const std::vector<RecentFile>& entries() const { return entries_; }
  bool contains(const QString& path) const;
  /// Puts the project first, once, and saves the list.
  void add(const QString& path);
  /// Takes the project off the list (not off the disk) and saves the list.
  void remove(const QString& path);

 private:
  void drop(const QString& path);
  void save() const;

  QString file_;
  std::vector<RecentFile> entries_;
};

}  // namespace shell
