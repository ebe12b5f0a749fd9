#include "host/base/log.h"

#include <cstdio>
#include <utility>

namespace base {
namespace {

LogSink& sink() {
  static LogSink installed;
  return installed;
}

}  // namespace

LogSink SetLogSink(LogSink next) {
  return std::exchange(sink(), std::move(next));
}

void Log(LogLevel level, const std::string& message) {
  if (sink()) {
    sink()(level, message);
    return;
  }
  static const char* const names[] = {"info", "warning", "error"};
  std::fprintf(stderr, "%s: %s\n", names[static_cast<int>(level)], message.c_str());
}

}  // namespace base
