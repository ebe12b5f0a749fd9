#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtTest>

namespace tests {

inline void writeFile(const QString& path, const QByteArray& content) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  QVERIFY2(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
           qPrintable(path));
}

/// Empty when the file cannot be read.
inline QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace tests
