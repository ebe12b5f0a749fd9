#include "benchmarks/figures.h"

#include <cstdio>

namespace bench {

bool report(const Measured& measured, const std::vector<Figure>& figures) {
  std::printf("%-58s %12s %12s %8s %8s\n", "name", "ours", "stock", "ratio", "bound");
  bool good = true;
  for (const Figure& figure : figures) {
    const auto ours = measured.find(figure.ours);
    const auto other = measured.find(figure.other);
    if (ours == measured.end() || other == measured.end()) {
      std::printf("%-58s not measured\n", figure.name.c_str());
      good = good && figure.bound <= 0;
      continue;
    }
    const double scale = figure.unit == "ms" ? 1e3 : 1e-6;
    const double ratio = ours->second / other->second;
    const bool broken = figure.bound > 0 && !(ratio <= figure.bound);
    good = good && !broken;
    std::printf("%-58s %9.2f %s %9.2f %s %8.3f ", figure.name.c_str(), ours->second * scale,
                figure.unit.c_str(), other->second * scale, figure.unit.c_str(), ratio);
    if (figure.bound > 0) {
      std::printf("%8.2f%s\n", figure.bound, broken ? "  BROKEN" : "");
    } else {
      std::printf("%8s\n", "-");
    }
  }
  return good;
}

}  // namespace bench
