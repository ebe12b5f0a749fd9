#include "project/checks.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace gui::qce {

namespace {

/// The characters of `name` that some file system forbids, each once, in order.
QString forbiddenCharacters(const QString& name) {
  QString found;
  for (const QChar c : name) {
    if (QStringLiteral("\\/:*?\"<>|").contains(c) && !found.contains(c)) found += c;
  }
  return found;
}

bool isInvisible(QChar c) {
  return c.category() == QChar::Other_Control || c.category() == QChar::Other_Format ||
         c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
}

/// Names that belong to devices on some systems, whatever follows a dot.
bool isDeviceName(const QString& name) {
  static const QRegularExpression device(QStringLiteral("^(CON|PRN|AUX|NUL|(COM|LPT)[1-9])(\\.|$)"),
                                         QRegularExpression::CaseInsensitiveOption);
  return device.match(name).hasMatch();
}

}  // namespace

const QStringList& SourceFileTypes() {
  static const QStringList types{QStringLiteral("ZBQD"),   QStringLiteral("TBQD"),
                                 QStringLiteral("ZGXJQD"), QStringLiteral("CZB"),
                                 QStringLiteral("CTB"),    QStringLiteral("GCLQD")};
  return types;
}

QString ProjectNameProblem(const QString& name) {
  if (name.trimmed().isEmpty()) {
    return QStringLiteral("工程名称为空。\n请在“工程名称”中填写名称。");
  }
  if (name != name.trimmed()) {
    return QStringLiteral("工程名称的开头或结尾有空格。\n请删去名称前后的空格。");
  }
  const QString forbidden = forbiddenCharacters(name);
  if (!forbidden.isEmpty()) {
    return QStringLiteral("工程名称用作文件名，不能含有字符：%1\n请删去或换成其他字符。")
        .arg(forbidden.split(QString(), Qt::SkipEmptyParts).join(QLatin1Char(' ')));
  }
  for (int i = 0; i < name.size(); ++i) {
    if (isInvisible(name[i])) {
      return QStringLiteral("工程名称的第 %1 个字是不可见字符，不能用作文件名。\n请重新输入名称。")
          .arg(i + 1);
    }
  }
  if (name.startsWith(QLatin1Char('.')) || name.endsWith(QLatin1Char('.'))) {
    return QStringLiteral("工程名称用作文件名，不能以“.”开头或结尾。\n请修改名称。");
  }
  if (isDeviceName(name)) {
    return QStringLiteral("“%1”是系统保留的名称，不能用作文件名。\n请换一个工程名称。").arg(name);
  }
  if (name.size() > MaxProjectNameLength) {
    return QStringLiteral("工程名称过长：有 %1 个字，最多 %2 个字。\n请缩短名称。")
        .arg(name.size())
        .arg(MaxProjectNameLength);
  }
  return {};
}

QString SourceFileProblem(const QString& path) {
  if (path.isEmpty()) return {};
  const QString shown = QDir::toNativeSeparators(path);
  const QFileInfo file(path);
  if (!file.exists()) {
    return QStringLiteral(
               "找不到文件：\n%1\n请检查路径，或点击“浏览”重新选择；直接新建工程时请清空路径。")
        .arg(shown);
  }
  if (!file.isFile()) {
    return QStringLiteral("所选路径不是文件：\n%1\n请点击“浏览”选择一个文件。").arg(shown);
  }
  if (!SourceFileTypes().contains(file.suffix(), Qt::CaseInsensitive)) {
    const QString fault =
        file.suffix().isEmpty()
            ? QStringLiteral("文件没有扩展名，无法识别：\n%1").arg(shown)
            : QStringLiteral("不支持扩展名为“%1”的文件：\n%2").arg(file.suffix(), shown);
    return QStringLiteral("%1\n请选择以下格式的文件：%2。")
        .arg(fault, SourceFileTypes().join(QStringLiteral("、")));
  }
  // Opening is the only honest test: permission bits do not tell of locks and access lists.
  QFile source(path);
  if (!source.open(QIODevice::ReadOnly)) {
    return QStringLiteral(
               "无法读取文件：\n%1\n请检查文件的读取权限，关闭正在使用它的程序，然后重试。")
        .arg(shown);
  }
  return {};
}

}  // namespace gui::qce
