#pragma once

#include "framework/commands.h"
#include "host/app/services.h"

// What the panes of the subcontract setting page have in common.
namespace gui::qce::destructors {

constexpr int OkButton = 0x400;  // QMessageBox::Ok

/// A hint, where a command has nothing to work on.
inline void hint(const char* text) {
  app::qce::GetQCEChannel()->message(text, OkButton);
}

}  // namespace gui::qce::destructors
