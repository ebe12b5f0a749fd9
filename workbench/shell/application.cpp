#include "workbench/shell/application.h"

#include <QApplication>
#include <QFontDatabase>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QPalette>
#include <QStyleFactory>
#include <QTranslator>

static void initIconResources() {
  Q_INIT_RESOURCE(icons);
}

namespace shell {

namespace {

// Only chrome is styled by sheet: a sheet on a grid would slow the painting of its cells.
constexpr char kSheet[] = R"(
QToolBar#toolBar { border: none; border-bottom: 1px solid #d5dbe1; spacing: 2px; padding: 3px 6px; }
QToolBar#toolBar QToolButton { padding: 3px 7px; border-radius: 4px; }
QToolBar#toolBar QToolButton:hover:enabled { background: #e3eefa; }
QToolBar#toolBar QToolButton:pressed { background: #cde0f5; }
QToolButton#qt_toolbar_ext_button { padding: 0; }
QListWidget#pageList { border: none; border-right: 1px solid #d5dbe1; background: #f3f6f9; outline: none; }
QListWidget#pageList::item { padding-left: 8px; border-left: 3px solid transparent; color: #1c2733; }
QListWidget#pageList::item:hover { background: #e6edf4; }
QListWidget#pageList::item:selected { background: #dbe9f8; border-left-color: #1769aa; color: #0d3c66; }
QTreeView#QCEFeeSummaryTreeView, QTreeView#QCENavigationTreeView { border: none; border-right: 1px solid #d5dbe1; background: #f7f9fb; outline: none; }
QTreeView#QCEFeeSummaryTreeView::item, QTreeView#QCENavigationTreeView::item { padding: 7px 6px; border: none; border-left: 3px solid transparent; color: #1c2733; }
QTreeView#QCEFeeSummaryTreeView::item:hover, QTreeView#QCENavigationTreeView::item:hover { background: #e6edf4; }
QTreeView#QCEFeeSummaryTreeView::item:selected, QTreeView#QCENavigationTreeView::item:selected { background: #dbe9f8; border-left-color: #1769aa; color: #0d3c66; }
QListWidget#recentList { border: 1px solid #d5dbe1; border-radius: 6px; outline: none; }
QListWidget#recentList::item { padding: 4px 8px; border-bottom: 1px solid #edf0f3; color: #1c2733; }
QListWidget#recentList::item:hover { background: #f0f6fc; }
QListWidget#recentList::item:selected { background: #dbe9f8; color: #0d3c66; }
QLabel#welcomeTitle { font-size: 26px; font-weight: bold; color: #0d3c66; }
QLabel#welcomeHeading { font-size: 16px; font-weight: bold; }
QPushButton[big="true"] { font-size: 15px; padding: 8px 18px; text-align: left; }
QDialogButtonBox { dialogbuttonbox-buttons-have-icons: 0; }
QStatusBar { border-top: 1px solid #d5dbe1; }
QStatusBar::item { border: none; }
)";

void setFont() {
  QFont font = QApplication::font();
  const QStringList families = QFontDatabase().families();
  for (const char* family : {"Noto Sans CJK SC", "Microsoft YaHei", "Source Han Sans SC"}) {
    if (!families.contains(QLatin1String(family))) continue;
    font = QFont(QLatin1String(family));
    break;
  }
  font.setPixelSize(13);
  QApplication::setFont(font);
}

QPalette lightPalette() {
  QPalette palette(QColor(0xf7, 0xf9, 0xfb));
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::AlternateBase, QColor(0xf5, 0xf8, 0xfb));
  palette.setColor(QPalette::WindowText, QColor(0x1c, 0x27, 0x33));
  palette.setColor(QPalette::Text, QColor(0x12, 0x1a, 0x22));
  palette.setColor(QPalette::ButtonText, QColor(0x1c, 0x27, 0x33));
  palette.setColor(QPalette::Highlight, QColor(0x17, 0x69, 0xaa));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::PlaceholderText, QColor(0x6b, 0x77, 0x85));
  palette.setColor(QPalette::ToolTipBase, Qt::white);
  palette.setColor(QPalette::ToolTipText, QColor(0x12, 0x1a, 0x22));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x94, 0x9e));
  }
  return palette;
}

}  // namespace

void setUpApplication(QApplication& application) {
  initIconResources();
  QApplication::setApplicationName(QStringLiteral("qce-workbench"));
  QApplication::setApplicationDisplayName(QStringLiteral("成本测算"));
  QApplication::setApplicationVersion(QLatin1String(kVersion));
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/qce/icons/project.svg")));
  QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
  auto* translator = new QTranslator(&application);
  if (translator->load(QStringLiteral("qtbase_zh_CN"),
                       QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
    QApplication::installTranslator(translator);
  }
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setPalette(lightPalette());
  setFont();
  application.setStyleSheet(QLatin1String(kSheet));
}

}  // namespace shell
