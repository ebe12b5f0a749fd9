#include "workbench/cli/command_line.h"

#include <langinfo.h>

#include <QApplication>
#include <QFileInfo>
#include <clocale>
#include <cstdio>
#include <functional>

#include "workbench/cli/arguments.h"
#include "workbench/cli/commands.h"
#include "workbench/services/install.h"
#include "workbench/shell/application.h"
#include "workbench/shell/main_window.h"

namespace cli {

namespace {

struct Entry {
  Command command;
  bool widgets;  ///< needs a widget application
  std::function<int(const Arguments&)> run;
};

const std::vector<Entry>& entries() {
  static const QStringList types{QStringLiteral("投标成本测算"), QStringLiteral("目标成本测算")};
  static const std::vector<Entry> list{
      {{QStringLiteral("new"),
        {},
        {},
        QStringLiteral("由源文件新建工程，并核对申报与读入的金额。"),
        {{QStringLiteral("source"),
          QStringLiteral("文件"),
          QStringLiteral("源文件：ZBQD、TBQD、ZGXJQD、CZB、CTB 或 GCLQD"),
          {}},
         {QStringLiteral("name"), QStringLiteral("名称"), QStringLiteral("工程名称"), {}},
         {QStringLiteral("type"), QStringLiteral("类型"), QStringLiteral("成本类型"), types},
         {QStringLiteral("out"),
          QStringLiteral("工程.qcp"),
          QStringLiteral("要写的工程文件；已有同名文件时拒绝"),
          {}}}},
       false,
       makeProject},
      {{QStringLiteral("check"),
        QStringLiteral("工程.qcp"),
        QStringLiteral("要检查的工程文件；不会被修改"),
        QStringLiteral("检查工程文件的完整性，并重新计算其中保存的全部合计。"),
        {}},
       false,
       checkProject},
      {{QStringLiteral("report"),
        QStringLiteral("工程.qcp"),
        QStringLiteral("要出报表的工程文件；不会被修改"),
        QStringLiteral("把三种费用汇总和间接费用各写成电子表格，并合成一份带图的 PDF 报表。"),
        {{QStringLiteral("out"),
          QStringLiteral("目录"),
          QStringLiteral("报表存放的目录；没有时建立，已有同名文件时拒绝"),
          {}}}},
       true,
       writeReport},
      {{QStringLiteral("tour"),
        QStringLiteral("工程.qcp"),
        QStringLiteral("要走查的工程文件；在其副本上进行"),
        QStringLiteral("像用户一样走遍每个页面，每步存一张图片；有一步未生效即失败。"),
        {{QStringLiteral("out"), QStringLiteral("目录"), QStringLiteral("图片存放的目录"), {}}}},
       true,
       tour},
      {{QStringLiteral("sample"),
        {},
        {},
        QStringLiteral("写一个任意规模的示例源文件。"),
        {{QStringLiteral("resources"),
          QStringLiteral("数量"),
          QStringLiteral("预算人材机条数，1 到 5000000"),
          {}},
         {QStringLiteral("seed"),
          QStringLiteral("种子"),
          QStringLiteral("随机种子，相同的种子写出相同的文件"),
          {}},
         {QStringLiteral("out"),
          QStringLiteral("文件"),
          QStringLiteral("要写的源文件，扩展名决定种类"),
          {}}}},
       false,
       writeSample},
  };
  return list;
}

QString mainUsage() {
  std::vector<Command> commands;
  for (const Entry& entry : entries()) commands.push_back(entry.command);
  return usage(commands);
}

bool hasDisplay() {
  return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

/// File names and arguments are UTF-8, also where the shell has set no locale.
void useUtf8() {
  std::setlocale(LC_ALL, "");
  if (qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0) return;
  qputenv("LC_ALL", "C.UTF-8");
  std::setlocale(LC_ALL, "");
}

/// A platform without a screen reports each thing that it cannot do; nobody asked it to.
void keepPlatformQuiet(QtMsgType, const QMessageLogContext&, const QString& text) {
  if (text.startsWith(QLatin1String("This plugin does not support")) ||
      text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR"))) {
    return;
  }
  printError(text);
}

QStringList wordsOf(int argc, char** argv) {
  QStringList words;
  for (int i = 1; i < argc; ++i) words << QString::fromUtf8(argv[i]);
  return words;
}

int runCommand(const Entry& entry, const QStringList& words, int argc, char** argv) {
  const Arguments arguments = parse(entry.command, words);
  if (arguments.help) {
    print(usage(entry.command));
    return Success;
  }
  if (!arguments.error.isEmpty()) {
    printError(arguments.error + QStringLiteral("\n\n") + usage(entry.command));
    return WrongUse;
  }
  if (!entry.widgets) {
    const QCoreApplication application(argc, argv);
    return entry.run(arguments);
  }
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(keepPlatformQuiet);
  }
  QApplication application(argc, argv);
  shell::setUpApplication(application);
  return entry.run(arguments);
}

int openWindow(const QString& project, int argc, char** argv) {
  if (!hasDisplay()) {
    printError(QStringLiteral(
        "没有可用的显示设备，不能打开窗口。可用 tour 命令在没有显示设备时走查工程。"));
    return Refused;
  }
  QApplication application(argc, argv);
  shell::setUpApplication(application);
  const auto services = services::install();
  shell::MainWindow window(*services);
  window.show();
  const QString damaged = services->configuration().setAside();
  if (!damaged.isEmpty()) {
    services->channel().message(
        QStringLiteral("设置文件已损坏，已改名保存为：\n%1\n本次以默认设置启动。")
            .arg(damaged)
            .toStdString(),
        0);
  }
  if (!project.isEmpty()) window.openProject(project);
  return QApplication::exec();
}

}  // namespace

void print(const QString& text) {
  std::fputs(text.toUtf8().constData(), stdout);
  if (!text.endsWith(QLatin1Char('\n'))) std::fputc('\n', stdout);
  std::fflush(stdout);
}

void printError(const QString& text) {
  std::fputs(text.toUtf8().constData(), stderr);
  if (!text.endsWith(QLatin1Char('\n'))) std::fputc('\n', stderr);
}

int run(int argc, char** argv) {
  useUtf8();
  QStringList words = wordsOf(argc, argv);
  const QString first = words.value(0);
  for (const Entry& entry : entries()) {
    if (entry.command.name == first) return runCommand(entry, words.mid(1), argc, argv);
  }
  if (first == QLatin1String("--help") || (first == QLatin1String("help") && words.size() == 1)) {
    print(mainUsage());
    return Success;
  }
  if (first == QLatin1String("--version")) {
    print(QStringLiteral("qce-workbench %1").arg(QLatin1String(shell::kVersion)));
    return Success;
  }
  if (first == QLatin1String("--"))
    words.removeFirst();
  else if (first.startsWith(QLatin1Char('-'))) {
    printError(QStringLiteral("没有选项 %1。\n\n").arg(first) + mainUsage());
    return WrongUse;
  }
  // A bare word that names no file is a command mistyped.
  const QFileInfo project(words.value(0));
  if (words.size() > 1 || (words.size() == 1 && first != QLatin1String("--") &&
                           project.suffix().isEmpty() && !project.exists())) {
    printError(QStringLiteral("没有命令 %1。\n\n").arg(first) + mainUsage());
    return WrongUse;
  }
  return openWindow(words.value(0), argc, argv);
}

}  // namespace cli
