#pragma once

#include <QApplication>
#include <QFont>
#include <QtTest>
#include <QtWidgets>

namespace tests {

/// The button with this text in a page or dialog.
inline QAbstractButton* button(const QWidget* in, const QString& text) {
  for (auto* found : in->findChildren<QAbstractButton*>()) {
    if (found->text() == text) return found;
  }
  qFatal("no such button");
}

}  // namespace tests

/// main() of a test that shows widgets: Chinese texts get glyphs, and every machine the same font.
#define QCE_WIDGET_TEST_MAIN(TestClass)                                  \
  int main(int argc, char** argv) {                                      \
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {                \
      qputenv("QT_QPA_PLATFORM", "offscreen");                           \
    }                                                                    \
    QApplication application(argc, argv);                                \
    QApplication::setStyle(QStringLiteral("Fusion"));                    \
    QApplication::setFont(QFont(QStringLiteral("Noto Sans CJK SC"), 9)); \
    TestClass test;                                                      \
    return QTest::qExec(&test, argc, argv);                              \
  }
