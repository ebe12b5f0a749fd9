#include "workbench/exchange/money_report.h"

#include <QStringList>
#include <algorithm>

#include "host/base/number_text.h"

namespace exchange {
namespace {

QString text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

QString money(const costing::Decimal& value) {
  return text(value.toString(2));
}

QString thousands(const costing::Decimal& value) {
  return text(base::ToThousandthsString(value.toDouble(), 2));
}

QString figureText(const char* noun, const MoneyFigure& figure) {
  const QString name = QString::fromUtf8(noun);
  if (!figure.declared) return QStringLiteral("%1未申报，读入 %2").arg(name, money(figure.read));
  if (figure.agrees()) {
    return QStringLiteral("%1申报 %2，读入 %3，一致")
        .arg(name, money(*figure.declared), money(figure.read));
  }
  return QStringLiteral("%1申报 %2，读入 %3，相差 %4")
      .arg(name, money(*figure.declared), money(figure.read),
           money(figure.read - *figure.declared));
}

QString lineText(const QString& title, const MoneyLine& line) {
  return QStringLiteral("%1：%2；%3；%4")
      .arg(title, figureText("清单合计", line.bills), figureText("人材机合计", line.resources),
           figureText("间接费合计", line.fees));
}

}  // namespace

bool MoneyReport::agrees() const {
  return differenceCount == 0 && project.agrees() &&
         std::all_of(unitWorks.begin(), unitWorks.end(),
                     [](const MoneyLine& line) { return line.agrees(); });
}

QString MoneyReport::summary() const {
  const auto figure = [](const char* noun, const MoneyFigure& sum) {
    QString line = QStringLiteral("%1 %2").arg(QString::fromUtf8(noun), thousands(sum.read));
    if (!sum.declared) return line + QStringLiteral("（未申报）");
    return sum.agrees() ? line : line + QStringLiteral("（申报 %1）").arg(thousands(*sum.declared));
  };
  return QStringLiteral("%1：%2　%3　%4")
      .arg(agrees() ? QStringLiteral("申报与读入金额一致")
                    : QStringLiteral("申报与读入金额不一致，按读入的金额新建"),
           figure("清单", project.bills), figure("人材机", project.resources),
           figure("间接费", project.fees));
}

QString MoneyReport::toText() const {
  QStringList lines;
  lines << lineText(QStringLiteral("工程“%1”").arg(text(project.name)), project);
  for (const MoneyLine& work : unitWorks) {
    lines << lineText(QStringLiteral("单位工程“%1”").arg(text(work.name)), work);
  }
  for (const MoneyDifference& difference : differences) {
    lines << QStringLiteral("第 %1 行第 %2 列：%3申报 %4，计算得 %5")
                 .arg(difference.line)
                 .arg(difference.column)
                 .arg(difference.place, money(difference.declared), money(difference.read));
  }
  if (differenceCount > differences.size()) {
    lines << QStringLiteral("另有 %1 处金额不一致").arg(differenceCount - differences.size());
  }
  return lines.join(QLatin1Char('\n'));
}

MoneyReport::Explanation MoneyReport::explanation() const {
  const QString cure =
      QStringLiteral("。请让编制方核对后重新导出；确认无误时也可以选择按读入的金额继续");
  if (!differences.empty()) {
    const MoneyDifference& first = differences.front();
    const QString what = QStringLiteral("%1申报 %2，计算得 %3，相差 %4")
                             .arg(first.place, money(first.declared), money(first.read),
                                  money(first.read - first.declared));
    return {what + cure, first.line, first.column};
  }
  const auto work = std::find_if(unitWorks.begin(), unitWorks.end(),
                                 [](const MoneyLine& line) { return !line.agrees(); });
  const bool inWork = work != unitWorks.end();
  const MoneyLine& line = inWork ? *work : project;
  const QString title =
      QStringLiteral("%1“%2”的金额前后不一致")
          .arg(inWork ? QStringLiteral("单位工程") : QStringLiteral("工程"), text(line.name));
  return {lineText(title, line) + cure, line.line, line.column};
}

}  // namespace exchange
