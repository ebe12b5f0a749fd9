#include "workbench/shell/spreadsheet_saver.h"

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <utility>

#include "workbench/exchange/spreadsheet_names.h"
#include "workbench/exchange/spreadsheet_writer.h"

namespace shell {
namespace {

constexpr char kFolderKey[] = "export.folder";

}  // namespace

SpreadsheetSaver::SpreadsheetSaver(services::Installed& services, Choose choose, Saved saved)
    : services_(services), choose_(std::move(choose)), saved_(std::move(saved)) {}

bool SpreadsheetSaver::save(const std::string& name, const std::vector<app::Sheet>& sheets) {
  QString folder =
      QString::fromStdString(services_.configuration().getValue(kFolderKey).value_or(""));
  if (!QFileInfo(folder).isDir()) folder = services_.paths().documents();
  const QString path = choose_(folder + QLatin1Char('/') +
                               exchange::spreadsheetFileName(QString::fromStdString(name)));
  if (path.isEmpty()) return false;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const QString problem = exchange::writeSpreadsheet(sheets, path);
  QApplication::restoreOverrideCursor();
  if (!problem.isEmpty()) {
    services_.channel().message(problem.toStdString(), QMessageBox::Ok);
    return false;
  }
  services_.configuration().setValue(kFolderKey, QFileInfo(path).absolutePath().toStdString());
  saved_(path);
  return true;
}

}  // namespace shell
