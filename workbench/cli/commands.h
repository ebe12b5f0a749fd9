#pragma once

#include "workbench/cli/arguments.h"

// The commands: each takes its parsed arguments and answers an ExitCode.
namespace cli {

int makeProject(const Arguments& arguments);
int checkProject(const Arguments& arguments);
int writeSample(const Arguments& arguments);
int writeReport(const Arguments& arguments);
int tour(const Arguments& arguments);

}  // namespace cli
