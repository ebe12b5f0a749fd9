#pragma once

#include <QString>
#include <optional>
#include <string>
#include <vector>

#include "workbench/costing/decimal.h"

namespace exchange {

/// A declared figure beside the one that the lines add up to. Yuan, 2 places.
struct MoneyFigure {
  std::optional<costing::Decimal> declared;  ///< empty when the kind declares none
  costing::Decimal read;
  bool agrees() const { return !declared || *declared == read; }
};

/// The money of one unit work or of the project; `line` and `column` are of its declaration.
struct MoneyLine {
  std::string id;
  std::string name;
  MoneyFigure bills;
  MoneyFigure resources;
  MoneyFigure fees;
  qint64 line = 0;
  qint64 column = 0;
  bool agrees() const { return bills.agrees() && resources.agrees() && fees.agrees(); }
};

/// A bill or an indirect fee whose declared amount is not the one its inputs give.
struct MoneyDifference {
  QString place;  ///< Chinese
  costing::Decimal declared;
  costing::Decimal read;
  qint64 line = 0;
  qint64 column = 0;
};

/// Money declared against money read, to the cent.
struct MoneyReport {
  static constexpr std::size_t ListedDifferences = 200;

  MoneyLine project;
  std::vector<MoneyLine> unitWorks;
  std::vector<MoneyDifference> differences;  ///< the first ListedDifferences of them
  std::size_t differenceCount = 0;

  bool agrees() const;
  /// One line of Chinese text: whether the project's money agrees, and its sums.
  QString summary() const;
  /// A few lines of Chinese text: the project, then each unit work, then what differs.
  QString toText() const;

  struct Explanation {
    QString reason;
    qint64 line = 0;
    qint64 column = 0;
  };
  /// What differs first and what to do about it, in Chinese. Only for a report that disagrees.
  Explanation explanation() const;
};

}  // namespace exchange
