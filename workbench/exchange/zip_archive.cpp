#include "workbench/exchange/zip_archive.h"

#include <minizip/unzip.h>

#include <QFile>

namespace exchange {

ZipArchive::ZipArchive(const QString& path)
    : file_(unzOpen64(QFile::encodeName(path).constData())) {}

ZipArchive::~ZipArchive() {
  if (file_ != nullptr) unzClose(file_);
}

bool ZipArchive::isOpen() const {
  return file_ != nullptr;
}

QStringList ZipArchive::names() const {
  QStringList found;
  if (file_ == nullptr) return found;
  for (int at = unzGoToFirstFile(file_); at == UNZ_OK; at = unzGoToNextFile(file_)) {
    QByteArray name(1024, '\0');
    if (unzGetCurrentFileInfo64(file_, nullptr, name.data(), static_cast<uLong>(name.size() - 1),
                                nullptr, 0, nullptr, 0) == UNZ_OK) {
      found << QString::fromUtf8(name.constData());
    }
  }
  return found;
}

std::optional<QByteArray> ZipArchive::read(const QString& name) const {
  if (file_ == nullptr || unzLocateFile(file_, name.toUtf8().constData(), 1) != UNZ_OK ||
      unzOpenCurrentFile(file_) != UNZ_OK) {
    return {};
  }
  QByteArray content;
  QByteArray chunk(1 << 16, '\0');
  int count = 0;
  do {
    count = unzReadCurrentFile(file_, chunk.data(), static_cast<unsigned>(chunk.size()));
    if (count > 0) content.append(chunk.constData(), count);
  } while (count > 0);
  const bool whole = unzCloseCurrentFile(file_) == UNZ_OK && count == 0;
  if (!whole) return {};
  return content;
}

}  // namespace exchange
