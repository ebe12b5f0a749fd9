#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench {

/// What one run has measured: the least of the repetitions of each benchmark, by its name.
/// Times in seconds, memory in bytes.
using Measured = std::map<std::string, double>;

/// One line of the report: a figure of ours over a figure to compare it with.
struct Figure {
  std::string name;
  std::string ours;
  std::string other;
  std::string unit;
  double bound = 0;  ///< greatest ratio allowed; 0 reports only
};

/// Prints one line a figure and answers whether every bound holds. A figure that was not measured
/// breaks its bound.
bool report(const Measured& measured, const std::vector<Figure>& figures);

}  // namespace bench
