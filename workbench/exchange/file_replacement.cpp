#include "workbench/exchange/file_replacement.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace exchange {
namespace {

QString shown(const QString& path) {
  return QStringLiteral("“%1”").arg(QDir::toNativeSeparators(path));
}

/// The nearest folder above `path` that exists, or the file that stands in its way.
QString nearestExisting(const QString& path) {
  QString above = path;
  while (!QFileInfo::exists(above) && above != QFileInfo(above).path()) {
    above = QFileInfo(above).path();
  }
  return above;
}

/// Whether an office program has left the mark beside the file with which it says that it is open.
bool isOpenElsewhere(const QFileInfo& file) {
  if (!file.exists()) return false;
  const QDir folder = file.dir();
  const QString name = file.fileName();
  return QFileInfo::exists(folder.filePath(QStringLiteral(".~lock.%1#").arg(name))) ||
         QFileInfo::exists(folder.filePath(QStringLiteral("~$%1").arg(name)));
}

QString openElsewhere(const QString& path) {
  return QStringLiteral(
             "文件%1正在另一个程序中打开，不能替换它。\n请先在该程序中关闭文件，或换一个文件名。")
      .arg(shown(path));
}

QString failed(const QSaveFile& file, const QString& path) {
  const QString untouched = QFileInfo::exists(path) ? QStringLiteral("原来的文件没有改变。")
                                                    : QStringLiteral("没有留下不完整的文件。");
  const QString folder = QFileInfo(path).absolutePath();
  switch (file.error()) {
    case QFileDevice::OpenError:
    case QFileDevice::PermissionsError:
      return QStringLiteral(
                 "不能在文件夹%1中写文件（技术信息：%"
                 "2）。\n请检查该文件夹的写入权限，或换一个位置。")
          .arg(shown(folder), file.errorString());
    case QFileDevice::RenameError:
      return openElsewhere(path);
    default:
      return QStringLiteral(
                 "写文件%1时出错，磁盘可能已满（技术信息：%2）。%"
                 "3\n请清理磁盘后重试，或换一个位置。")
          .arg(shown(path), file.errorString(), untouched);
  }
}

}  // namespace

QString replacementProblem(const QString& path) {
  const QFileInfo target(path);
  const QString folder = target.absolutePath();
  const QFileInfo nearest(nearestExisting(folder));
  if (!nearest.isDir()) {
    return QStringLiteral("%1不是文件夹，不能在其中保存文件。\n请换一个位置。")
        .arg(shown(nearest.filePath()));
  }
  if (!QFileInfo::exists(folder)) {
    return QStringLiteral("文件夹%1不存在。\n请先建立该文件夹，或换一个位置。").arg(shown(folder));
  }
  if (target.isDir()) {
    return QStringLiteral("%1是一个文件夹，不能用作文件名。\n请换一个文件名。").arg(shown(path));
  }
  if (target.exists() && !target.isWritable()) {
    return QStringLiteral("文件%1是只读的，不能替换它。\n请取消只读属性，或换一个文件名。")
        .arg(shown(path));
  }
  if (isOpenElsewhere(target)) return openElsewhere(path);
  return {};
}

QString replaceFile(QIODevice& content, const QString& path) {
  QString problem = replacementProblem(path);
  if (!problem.isEmpty()) return problem;
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return failed(file, path);
  QByteArray chunk(1 << 20, '\0');
  for (;;) {
    const qint64 count = content.read(chunk.data(), chunk.size());
    if (count == 0) break;
    if (count < 0) {
      return QStringLiteral("读取临时文件时出错（技术信息：%1）。\n请重试。")
          .arg(content.errorString());
    }
    if (file.write(chunk.constData(), count) != count) return failed(file, path);
  }
  return file.commit() ? QString() : failed(file, path);
}

}  // namespace exchange
