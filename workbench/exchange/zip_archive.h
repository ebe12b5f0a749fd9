#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace exchange {

/// A ZIP file opened for reading.
class ZipArchive {
 public:
  explicit ZipArchive(const QString& path);
  ~ZipArchive();
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;

  bool isOpen() const;
  /// The names of the members, in their order.
  QStringList names() const;
  /// The whole content of a member; nothing when there is none or its check sum is wrong.
  std::optional<QByteArray> read(const QString& name) const;

 private:
  void* file_;
};

}  // namespace exchange
