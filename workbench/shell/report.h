#pragma once

#include <QString>
#include <QStringList>

#include "workbench/records/fee_template.h"
#include "workbench/records/project.h"

namespace shell {

/// What writing a report has come to.
struct ReportResult {
  QStringList files;  ///< the paths of those that are there now
  QString problem;    ///< why there are not all (Chinese, with the cure); empty when there are
};

/// The names of the files of a report: a spreadsheet for each summary and for the indirect fees,
/// and one PDF of them all, each with a head and, for summaries, their plot.
QStringList reportFileNames();

/// Writes the files into the folder, which is made where there is none, replacing what is there.
/// All are made before the first of them is put in its place, each whole or not at all. Needs a
/// widget application.
ReportResult writeReport(records::Project& project, const records::FeeTemplate& feeTemplate,
                         const QString& folder);

}  // namespace shell
