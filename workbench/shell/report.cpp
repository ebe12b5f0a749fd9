#include "workbench/shell/report.h"

#include <qwt/qwt_plot_renderer.h>

#include <QApplication>
#include <QBuffer>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QTemporaryDir>
#include <memory>
#include <stdexcept>

#include "workbench/exchange/file_replacement.h"
#include "workbench/exchange/pdf_report.h"
#include "workbench/exchange/spreadsheet_names.h"
#include "workbench/exchange/spreadsheet_writer.h"
#include "workbench/operators/report_sheets.h"
#include "workbench/shell/summary_bars.h"
#include "workbench/shell/summary_plot.h"

namespace shell {

namespace {

using records::SummaryKind;

constexpr SummaryKind kKinds[] = {SummaryKind::BidFees, SummaryKind::Structure,
                                  SummaryKind::Accounts};
constexpr char kFees[] = "间接费用";
constexpr char kPdf[] = "费用报表.pdf";
constexpr int kPlotWidth = 760;  // pixels of the plot before it is scaled to the page
constexpr int kBarHeight = 24;   // of a pair of bars
constexpr int kPlotFrame = 90;   // of legend and axis
constexpr int kPlotFont = 12;

exchange::ReportHead headOf(const records::Facts& facts, const records::FeeTemplate& fees) {
  const auto text = [](const std::string& utf8) {
    return utf8.empty() ? QStringLiteral("—") : QString::fromStdString(utf8);
  };
  exchange::ReportHead head;
  head.project = QString::fromStdString(facts.name);
  const QString method =
      facts.taxMethod.empty() ? QStringLiteral("按费用模板") : text(facts.taxMethod);
  const QString rate = QString::fromStdString(fees.taxRate(facts).toString());
  head.facts = {{QStringLiteral("工程名称"), text(facts.name)},
                {QStringLiteral("测算类型"), text(facts.costType)},
                {QStringLiteral("编制日期"), text(facts.date)},
                {QStringLiteral("计税方法"), QStringLiteral("%1，税率 %2 %").arg(method, rate)},
                {QStringLiteral("建设单位"), text(facts.builder)},
                {QStringLiteral("金额单位"), QStringLiteral("元，除税金外均不含税")}};
  head.note = QStringLiteral("导出于 %1")
                  .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
  return head;
}

/// The plot of a summary as a picture of lines and texts, not of pixels.
void addPlot(exchange::ReportPart& part, const records::SummaryLine& total) {
  operators::FeeSummaryOperator rows;
  rows.replace(total);
  const auto plot = std::make_shared<SummaryPlot>();
  QFont font = QApplication::font();
  font.setPixelSize(kPlotFont);
  plot->setFont(font);
  std::vector<SummaryPlot::Bar> bars = summaryBars(rows).bars;
  if (bars.empty()) return;
  const int height = kPlotFrame + static_cast<int>(bars.size()) * kBarHeight;
  plot->resize(kPlotWidth, height);
  plot->updateLayout();
  plot->setBars(std::move(bars));  // the scales follow the width that there is
  part.pictureShape = static_cast<double>(height) / kPlotWidth;
  part.picture = [plot](QPainter& painter, const QRectF& place) {
    QwtPlotRenderer renderer;
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardBackground);
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardCanvasFrame);
    renderer.render(plot.get(), &painter, place);
  };
}

std::vector<exchange::ReportPart> partsOf(records::Project& project,
                                          const records::FeeTemplate& feeTemplate) {
  std::vector<exchange::ReportPart> parts;
  for (const SummaryKind kind : kKinds) {
    const records::SummaryLine total = records::summarize(project, kind, feeTemplate);
    exchange::ReportPart part;
    part.table = operators::summarySheet(total, kind);
    addPlot(part, total);
    parts.push_back(std::move(part));
  }
  exchange::ReportPart fees;
  fees.table = operators::feeSheet(project);
  parts.push_back(std::move(fees));
  return parts;
}

QString folderProblem(const QDir& folder) {
  if (!folder.exists() && !QDir().mkpath(folder.path())) {
    return QStringLiteral("不能建立文件夹“%1”。\n请检查上级文件夹的写入权限，或换一个位置。")
        .arg(QDir::toNativeSeparators(folder.path()));
  }
  for (const QString& name : reportFileNames()) {
    QString problem = exchange::replacementProblem(folder.filePath(name));
    if (!problem.isEmpty()) return problem;
  }
  return {};
}

QString moved(const QString& from, const QString& to) {
  QFile file(from);
  if (!file.open(QIODevice::ReadOnly)) {
    return QStringLiteral("读取临时文件“%1”时出错（技术信息：%2）。\n请重试。")
        .arg(QDir::toNativeSeparators(from), file.errorString());
  }
  return exchange::replaceFile(file, to);
}

}  // namespace

QStringList reportFileNames() {
  QStringList names;
  for (const SummaryKind kind : kKinds) {
    names << exchange::spreadsheetFileName(QString::fromStdString(records::nameOf(kind)));
  }
  names << exchange::spreadsheetFileName(QString::fromUtf8(kFees)) << QString::fromUtf8(kPdf);
  return names;
}

ReportResult writeReport(records::Project& project, const records::FeeTemplate& feeTemplate,
                         const QString& folder) {
  ReportResult result;
  const QDir target(QFileInfo(folder).absoluteFilePath());
  result.problem = folderProblem(target);
  if (!result.problem.isEmpty()) return result;
  const QTemporaryDir scratch;
  if (!scratch.isValid()) {
    result.problem =
        QStringLiteral("不能建立临时文件夹，磁盘可能已满（技术信息：%1）。\n请清理磁盘后重试。")
            .arg(scratch.errorString());
    return result;
  }
  QByteArray pdf;
  const QStringList names = reportFileNames();
  try {
    const std::vector<exchange::ReportPart> parts = partsOf(project, feeTemplate);
    for (std::size_t i = 0; i < parts.size(); ++i) {
      result.problem = exchange::writeSpreadsheet({parts[i].table},
                                                  scratch.filePath(names.at(static_cast<int>(i))));
      if (!result.problem.isEmpty()) return result;
    }
    pdf = exchange::printReport(headOf(project.facts, feeTemplate), parts).pdf;
  } catch (const std::overflow_error&) {
    result.problem = QStringLiteral("汇总的金额超出可表示的范围，请检查数量和单价。");
    return result;
  }
  for (const QString& name : names) {
    const QString path = target.filePath(name);
    if (name == names.last()) {
      QBuffer content(&pdf);
      content.open(QIODevice::ReadOnly);
      result.problem = exchange::replaceFile(content, path);
    } else {
      result.problem = moved(scratch.filePath(name), path);
    }
    if (!result.problem.isEmpty()) return result;
    result.files << path;
  }
  return result;
}

}  // namespace shell
