#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

namespace cli {

/// One option of a command: "--name value".
struct Option {
  QString name;         ///< without the dashes
  QString placeholder;  ///< what stands for the value in the help
  QString help;
  QStringList choices;  ///< when not empty, the only values allowed
};

/// One command as the help shows it and the parser reads it. All options are required.
struct Command {
  QString name;
  QString operand;  ///< placeholder of the one operand; empty when the command takes none
  QString operandHelp;
  QString help;
  std::vector<Option> options;
};

/// The arguments of a command after parsing.
struct Arguments {
  QString operand;
  QMap<QString, QString> options;
  bool help = false;  ///< the help was asked for; nothing else is filled in then
  QString error;      ///< what is wrong with the arguments; empty when they are right
};

/// Reads `words`, what stands after the command's name. "--name=value" counts like "--name value";
/// after "--" everything is an operand.
Arguments parse(const Command& command, const QStringList& words);

QString usage(const Command& command);
QString usage(const std::vector<Command>& commands);

}  // namespace cli
