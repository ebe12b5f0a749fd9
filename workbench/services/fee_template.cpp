#include "workbench/services/fee_template.h"

#include <QDir>
#include <QFile>

static void initFeeResources() {
  Q_INIT_RESOURCE(templates);
}

namespace services {

namespace {

constexpr qint64 kLargest = qint64(1) << 20;  // bytes; a template is a few kilobytes

records::FeeTemplate builtIn() {
  initFeeResources();
  QFile file(QStringLiteral(":/qce/fees/投标费用.json"));
  file.open(QIODevice::ReadOnly);
  return records::FeeTemplate::parse(file.readAll().toStdString());
}

}  // namespace

records::FeeTemplate loadFeeTemplate(const QString& templateDirectory, QString* problem) {
  const QString path = templateDirectory + QStringLiteral("/费用模板/投标费用.json");
  QFile file(path);
  if (templateDirectory.isEmpty() || !file.exists()) return builtIn();
  QString why;
  if (!file.open(QIODevice::ReadOnly)) {
    why = QStringLiteral("不能读取：%1。请检查该文件的权限。").arg(file.errorString());
  } else if (file.size() > kLargest) {
    why = QStringLiteral("超过 1 MB，不像是费用模板。请换用正确的文件。");
  } else {
    try {
      return records::FeeTemplate::parse(file.readAll().toStdString());
    } catch (const records::FeeTemplateError& error) {
      why = QString::fromUtf8(error.what());
    }
  }
  if (problem != nullptr) {
    *problem = QStringLiteral("%1\n\n文件：%2\n费用汇总暂按内置的费用模板计算。")
                   .arg(why, QDir::toNativeSeparators(path));
  }
  return builtIn();
}

}  // namespace services
