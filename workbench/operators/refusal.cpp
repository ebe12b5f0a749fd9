#include "workbench/operators/refusal.h"

#include "host/app/services.h"

namespace operators {

namespace {

constexpr int OkButton = 0x400;  // QMessageBox::Ok; the contract's button numbers are the toolkit's

}  // namespace

bool refuse(const std::string& message) {
  notify(message);
  return false;
}

void notify(const std::string& message) {
  app::qce::GetQCEChannel()->message(message, OkButton);
}

}  // namespace operators
