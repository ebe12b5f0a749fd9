#pragma once

#include <QString>

namespace cli {

/// What the program answers to the shell.
enum ExitCode : int {
  Success = 0,
  Refused = 1,   ///< the input cannot be used, or a check found a fault
  WrongUse = 2,  ///< the command line itself is wrong
};

/// Runs the program with the command line of main(): a command, or the window.
int run(int argc, char** argv);

/// UTF-8, whatever the locale.
void print(const QString& text);
void printError(const QString& text);

}  // namespace cli
