#include "workbench/cli/arguments.h"

#include <algorithm>

namespace cli {

namespace {

constexpr char kProgram[] = "qce-workbench";

/// How many terminal columns a text takes: East Asian characters are two wide.
int columns(const QString& text) {
  int width = 0;
  for (const QChar c : text) width += c.unicode() >= 0x2E80 ? 2 : 1;
  return width;
}

QString table(const std::vector<std::pair<QString, QString>>& rows) {
  int widest = 0;
  for (const auto& row : rows) widest = std::max(widest, columns(row.first));
  QString text;
  for (const auto& [left, right] : rows) {
    text += QStringLiteral("  ") + left + QString(widest - columns(left) + 2, QLatin1Char(' ')) +
            right + QLatin1Char('\n');
  }
  return text;
}

QString synopsis(const Command& command) {
  QString line = QLatin1String(kProgram) + QLatin1Char(' ') + command.name;
  if (!command.operand.isEmpty()) line += QLatin1Char(' ') + command.operand;
  for (const Option& option : command.options) {
    line += QStringLiteral(" --%1 %2").arg(option.name, option.placeholder);
  }
  return line;
}

QString readOption(const Option& option, const QString& value, Arguments& into) {
  if (into.options.contains(option.name)) {
    return QStringLiteral("选项 --%1 只能给出一次。").arg(option.name);
  }
  if (value.isEmpty()) return QStringLiteral("选项 --%1 缺少内容。").arg(option.name);
  if (!option.choices.isEmpty() && !option.choices.contains(value)) {
    return QStringLiteral("选项 --%1 只能是：%2。")
        .arg(option.name, option.choices.join(QStringLiteral("、")));
  }
  into.options.insert(option.name, value);
  return {};
}

QString missing(const Command& command, const Arguments& arguments) {
  if (!command.operand.isEmpty() && arguments.operand.isEmpty()) {
    return QStringLiteral("缺少 %1。").arg(command.operand);
  }
  for (const Option& option : command.options) {
    if (!arguments.options.contains(option.name)) {
      return QStringLiteral("缺少选项 --%1。").arg(option.name);
    }
  }
  return {};
}

}  // namespace

Arguments parse(const Command& command, const QStringList& words) {
  Arguments result;
  const auto refuse = [&result](const QString& why) {
    result.error = why;
    return result;
  };
  bool onlyOperands = false;
  for (int i = 0; i < words.size(); ++i) {
    const QString& word = words[i];
    if (onlyOperands || !word.startsWith(QLatin1String("--"))) {
      if (command.operand.isEmpty() || !result.operand.isEmpty() || word.isEmpty()) {
        return refuse(QStringLiteral("多余的参数：“%1”。").arg(word));
      }
      result.operand = word;
      continue;
    }
    if (word == QLatin1String("--")) {
      onlyOperands = true;
      continue;
    }
    if (word == QLatin1String("--help")) {
      Arguments help;
      help.help = true;
      return help;
    }
    const QString name = word.section(QLatin1Char('='), 0, 0).mid(2);
    const auto option = std::find_if(command.options.begin(), command.options.end(),
                                     [&name](const Option& o) { return o.name == name; });
    if (option == command.options.end()) {
      return refuse(QStringLiteral("没有选项 --%1。").arg(name));
    }
    const bool attached = word.contains(QLatin1Char('='));
    const QString value = attached ? word.section(QLatin1Char('='), 1) : words.value(++i);
    const QString error = readOption(*option, value, result);
    if (!error.isEmpty()) return refuse(error);
  }
  result.error = missing(command, result);
  return result;
}

QString usage(const Command& command) {
  std::vector<std::pair<QString, QString>> rows;
  if (!command.operand.isEmpty()) rows.emplace_back(command.operand, command.operandHelp);
  for (const Option& option : command.options) {
    QString help = option.help;
    if (!option.choices.isEmpty()) {
      help += QStringLiteral("（%1）").arg(option.choices.join(QStringLiteral("、")));
    }
    rows.emplace_back(QStringLiteral("--%1 %2").arg(option.name, option.placeholder), help);
  }
  rows.emplace_back(QStringLiteral("--help"), QStringLiteral("显示本帮助"));
  return QStringLiteral("用法：%1\n\n%2\n\n%3").arg(synopsis(command), command.help, table(rows));
}

QString usage(const std::vector<Command>& commands) {
  std::vector<std::pair<QString, QString>> rows;
  rows.reserve(commands.size());
  for (const Command& command : commands) rows.emplace_back(command.name, command.help);
  return QStringLiteral(
             "用法：%1 [工程.qcp]\n"
             "      %1 命令 [选项]\n\n"
             "成本测算工作台。不带命令时打开窗口；给出工程文件时在窗口中打开它。\n\n"
             "命令：\n%2\n"
             "选项：\n%3\n"
             "“%1 命令 --help”显示命令的用法。\n"
             "返回值：0 成功；1 输入被拒绝；2 用法错误。\n")
      .arg(QLatin1String(kProgram), table(rows),
           table({{QStringLiteral("--help"), QStringLiteral("显示本帮助")},
                  {QStringLiteral("--version"), QStringLiteral("显示版本")}}));
}

}  // namespace cli
