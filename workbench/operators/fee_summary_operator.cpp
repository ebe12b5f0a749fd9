#include "workbench/operators/fee_summary_operator.h"

#include <unordered_set>
#include <utility>

#include "host/base/number_text.h"
#include "workbench/operators/columns.h"

namespace operators {

namespace summary_keys {
const std::string Name = "QCE_FSName";
const std::string Income = "QCE_FSIncome";
const std::string Cost = "QCE_FSCost";
const std::string Difference = "QCE_FSDifference";
const std::string Share = "QCE_FSShare";
}  // namespace summary_keys

namespace {

using records::RowList;
using records::SummaryLine;
using Kind = SummaryLine::Kind;

/// Lines of one record differ in kind; more than one line of a kind, or lines without a record, are
/// numbered as they come.
class Ids {
 public:
  std::int64_t of(const SummaryLine& line) {
    if (line.source != nullptr) {
      const std::int64_t id = line.source->id() * 32 + static_cast<int>(line.kind);
      if (given_.insert(id).second) return id;
    }
    return --last_;
  }

 private:
  std::unordered_set<std::int64_t> given_;
  std::int64_t last_ = 0;
};

SummaryRow& rowAt(const RowList& rows, int row) {
  return *static_cast<SummaryRow*>(rows.at(row));
}

void build(RowList& rows, const std::vector<SummaryLine>& lines, Ids& ids) {
  for (const SummaryLine& line : lines) {
    scoped_refptr<SummaryRow> row(new SummaryRow(ids.of(line), line));
    build(row->rows(), line.lines, ids);
    rows.append(scoped_refptr<records::Record>(row.get()));
  }
}

bool isSame(const SummaryLine& shown, const SummaryLine& line) {
  return shown.kind == line.kind && shown.source == line.source && shown.category == line.category;
}

/// `extra` rows follow those of the lines.
bool hasShape(const RowList& rows, const std::vector<SummaryLine>& lines, int extra) {
  if (rows.size() != static_cast<int>(lines.size()) + extra) return false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const SummaryRow& row = rowAt(rows, static_cast<int>(i));
    if (!isSame(row.line(), lines[i]) || !hasShape(row.rows(), lines[i].lines, 0)) return false;
  }
  return true;
}

bool showsSame(const SummaryLine& a, const SummaryLine& b) {
  return a.name == b.name && a.income == b.income && a.cost == b.cost && a.share == b.share;
}

SummaryLine withoutLines(const SummaryLine& from) {
  SummaryLine line;
  line.kind = from.kind;
  line.name = from.name;
  line.source = from.source;
  line.category = from.category;
  line.income = from.income;
  line.cost = from.cost;
  line.share = from.share;
  return line;
}

const SummaryRow* rowOf(const proxy::Element* element) {
  return dynamic_cast<const SummaryRow*>(element);
}

}  // namespace

SummaryRow::SummaryRow(std::int64_t id, const SummaryLine& from)
    : Branch(id), line_(withoutLines(from)) {}

std::unique_ptr<domain::DisplayTable> makeFeeSummaryTable() {
  using namespace domain;
  return makeTable("QCE_FeeSummary",
                   {{summary_keys::Name, "名称", StringField, 255},
                    {summary_keys::Income, "收入（不含税）", FloatingPointField, 110, true},
                    {summary_keys::Cost, "成本（不含税）", FloatingPointField, 110, true},
                    {summary_keys::Difference, "差额", FloatingPointField, 98, true},
                    {summary_keys::Share, "占比（%）", FloatingPointField, 76, true}},
                   true);
}

FeeSummaryOperator::FeeSummaryOperator() : root_(new records::Group) {}
FeeSummaryOperator::~FeeSummaryOperator() = default;

void FeeSummaryOperator::replace(const SummaryLine& total) {
  highlighted_ = nullptr;
  root_.reset(new records::Group);
  Ids ids;
  build(root_->rows(), total.lines, ids);
  root_->rows().append(scoped_refptr<records::Record>(new SummaryRow(ids.of(total), total)));
}

bool FeeSummaryOperator::update(const SummaryLine& total, const Changed& changed) {
  if (!hasShape(root_->rows(), total.lines, 1)) return false;
  const std::function<void(const RowList&, const std::vector<SummaryLine>&)> write =
      [&](const RowList& rows, const std::vector<SummaryLine>& lines) {
        int first = -1;
        int last = -1;
        for (int i = 0; i < rows.size(); ++i) {
          SummaryRow& row = rowAt(rows, i);
          // The row behind those of the lines is the total.
          const bool isLine = i < static_cast<int>(lines.size());
          const SummaryLine& line = isLine ? lines[static_cast<std::size_t>(i)] : total;
          if (!showsSame(row.line_, line)) {
            row.line_ = withoutLines(line);
            if (first < 0) first = i;
            last = i;
          }
          if (isLine) write(row.rows(), line.lines);
        }
        if (first >= 0 && changed) changed(rowAt(rows, first), rowAt(rows, last));
      };
  write(root_->rows(), total.lines);
  return true;
}

bool FeeSummaryOperator::getValue(const proxy::Element* element, const std::string& key, int role,
                                  domain::Value& out) const {
  const SummaryRow* row = rowOf(element);
  if (row == nullptr) return false;
  const SummaryLine& line = row->line();
  switch (role) {
    case domain::DisplayRole:
    case domain::EditRole:
      if (key == summary_keys::Name) {
        domain::AssignText(out, line.name);
      } else if (key == summary_keys::Income) {
        out = line.income.toDouble();
      } else if (key == summary_keys::Cost) {
        out = line.cost.toDouble();
      } else if (key == summary_keys::Difference) {
        out = line.difference().toDouble();
      } else if (key == summary_keys::Share) {
        out = line.share.toDouble();
      } else {
        return false;
      }
      return true;
    case domain::ToolTipRole:
      domain::AssignText(out, explain(line));
      return true;
    case domain::FontRole:
      if (row->parent() != nullptr) return false;
      out = base::Font{true, "Noto Sans CJK SC"};
      return true;
    case domain::ForegroundRole:
      if (key != summary_keys::Difference || !isLoss(line)) return false;
      out = base::Color{190, 30, 30};
      return true;
    case domain::BackgroundRole:
      if (row == highlighted_) {
        out = base::Color{255, 243, 205};
      } else if (line.kind == Kind::Total) {
        out = base::Color{226, 236, 247};
      } else if (row->parent() == nullptr) {
        out = base::Color{245, 248, 252};
      } else {
        return false;
      }
      return true;
    default:
      return false;
  }
}

bool isLoss(const SummaryLine& line) {
  return line.difference().isNegative() && line.kind != Kind::Rounding &&
         !records::differByRounding(line.income.toDouble(), line.cost.toDouble());
}

std::string explain(const SummaryLine& line) {
  const auto text = [&line](const std::string& what) {
    std::string more;
    if (isLoss(line)) {
      more = "\n成本超出收入 " +
             base::ToThousandthsString(-line.difference().toDouble(), costing::MoneyPlaces) +
             " 元。";
    } else if (line.kind != Kind::Rounding && !line.difference().isZero() &&
               records::differByRounding(line.income.toDouble(), line.cost.toDouble())) {
      more = "\n差额来自数量和金额的舍入，不是盈亏。";
    }
    return line.name + "\n" + what + more;
  };
  switch (line.kind) {
    case Kind::Total:
      return text("各行之和，含税金；三种汇总的合计相同。");
    case Kind::Heading:
    case Kind::Structure:
    case Kind::Fees:
    case Kind::FeeGroup:
    case Kind::Subcontracts:
      return text("下级各行之和。");
    case Kind::Element:
      return text("整个工程的" + records::nameOf(line.category) +
                  "：收入为预算合价，成本为不含税合价。");
    case Kind::Margin:
      return text("收入为清单合价减去其人材机的预算合价；其成本列在间接费中。");
    case Kind::Bill:
      return text("收入为清单合价，成本为清单在各成本工料机中的金额与其分包份额之和。");
    case Kind::LooseItems:
      return text("手工增加、没有清单的人材机。");
    case Kind::FeeItem:
      return text("间接费项目的金额。");
    case Kind::Subcontract:
      return text("分包的不含税合价；其清单和人材机的收入列在原处。");
    case Kind::Account:
      return text("归入该成本科目及其下级科目的人材机、间接费和分包。");
    case Kind::OwnAccount:
      return text("直接归入该成本科目、不在其下级科目中的人材机、间接费和分包。");
    case Kind::NoAccount:
      return text("没有成本科目的人材机、间接费和分包。");
    case Kind::Tax:
      return text("（清单合价 + 间接费）× 税率，代收代付，收入与成本相等。");
    case Kind::Rounding:
      return text("各行分别舍入后相加，与合计只舍入一次之间的差，不是盈亏。");
  }
  return line.name;
}

}  // namespace operators
