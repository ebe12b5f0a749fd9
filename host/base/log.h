#pragma once

#include <functional>
#include <string>

#include "contract_export.h"

namespace base {

enum class LogLevel { Info, Warning, Error };

/// Where log lines go. The host installs its sink once at start-up; without one they go to stderr.
using LogSink = std::function<void(LogLevel, const std::string& message)>;

/// Installs `sink` and returns the one that was installed before (empty for stderr).
QCE_CONTRACT_EXPORT LogSink SetLogSink(LogSink sink);

QCE_CONTRACT_EXPORT void Log(LogLevel level, const std::string& message);

inline void LogError(const std::string& message) {
  Log(LogLevel::Error, message);
}

}  // namespace base
