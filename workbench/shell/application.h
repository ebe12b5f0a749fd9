#pragma once

class QApplication;

namespace shell {

/// Gives the application its name, font, colours and the toolkit's Chinese texts.
void setUpApplication(QApplication& application);

/// What stands in the help and in the about box.
constexpr char kVersion[] = "0.1.0";

}  // namespace shell
