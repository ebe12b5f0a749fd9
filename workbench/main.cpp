#include "workbench/cli/command_line.h"

int main(int argc, char** argv) {
  return cli::run(argc, argv);
}
