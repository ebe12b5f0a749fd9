#include <benchmark/benchmark.h>
#include <malloc.h>

#include <QApplication>
#include <QLocale>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "benchmarks/bill_tree.h"
#include "benchmarks/figures.h"
#include "benchmarks/ours.h"
#include "benchmarks/pooling.h"
#include "benchmarks/rows.h"
#include "benchmarks/stock.h"

namespace bench {
namespace {

double bytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks + info.hblkhd);
}

double seconds(const std::function<void()>& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Keeps the least of the repetitions of each benchmark: what the machine can do when nothing else
// disturbs it.
class Collector : public benchmark::BenchmarkReporter {
 public:
  explicit Collector(Measured& measured) : measured_(measured) {}
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
      std::fprintf(stderr, "%s %.4f s\n", run.run_name.function_name.c_str(),
                   run.real_accumulated_time / static_cast<double>(run.iterations));
      keep(run.run_name.function_name,
           run.real_accumulated_time / static_cast<double>(run.iterations));
      const auto bytes = run.counters.find("bytes");
      if (bytes != run.counters.end()) keep(run.run_name.function_name + "/bytes", bytes->second);
    }
  }

 private:
  void keep(const std::string& name, double value) {
    const auto [at, fresh] = measured_.emplace(name, value);
    if (!fresh) at->second = std::min(at->second, value);
  }
  Measured& measured_;
};

template <class Side>
struct Fixture {
  const Rows& rows;
  std::unique_ptr<Side> side;
  explicit Fixture(const Rows& data) : rows(data) {}
  Side& get() {
    if (!side) side = std::make_unique<Side>(rows);
    return *side;
  }
};

template <class Work>
void add(const std::string& name, int repetitions, Work work) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [work](benchmark::State& state) {
                                 for (auto _ : state) state.SetIterationTime(work());
                               })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(repetitions);
}

template <class Side>
void addFill(const std::string& name, int repetitions, const Rows& rows) {
  benchmark::RegisterBenchmark(
      name.c_str(),
      [&rows](benchmark::State& state) {
        for (auto _ : state) {
          const double before = bytesInUse();
          std::unique_ptr<Side> side;
          state.SetIterationTime(seconds([&] { side = std::make_unique<Side>(rows); }));
          state.counters["bytes"] = bytesInUse() - before;
        }
      })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(repetitions);
}

// Reads every cell below the top of a proxy as a tree view paints it: the first cell of a row by
// number, the others as its siblings.
template <class Read>
void readAll(QAbstractItemModel& model, const QModelIndex& parent, const Read& read) {
  const int rows = model.rowCount(parent);
  const int columns = model.columnCount(parent);
  for (int row = 0; row < rows; ++row) {
    const QModelIndex first = model.index(row, 0, parent);
    read(first);
    for (int c = 1; c < columns; ++c) read(first.sibling(row, c));
    if (model.hasChildren(first)) readAll(model, first, read);
  }
}

int countAll(const QAbstractItemModel& model, const QModelIndex& parent = {}) {
  int count = model.rowCount(parent);
  for (int row = 0, rows = count; row < rows; ++row) {
    const QModelIndex index = model.index(row, 0, parent);
    if (model.hasChildren(index)) count += countAll(model, index);
  }
  return count;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  using namespace bench;
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  QLocale::setDefault(QLocale(QLocale::Chinese, QLocale::China));
  // --quick leaves the million out; --only REGEX measures some, and then breaks the other bounds.
  const QStringList arguments = QApplication::arguments();
  const bool quick = arguments.contains("--quick");
  const int only = arguments.indexOf("--only") + 1;
  const std::string pattern =
      only > 0 && only < arguments.size() ? arguments[only].toStdString() : ".";

  // Ours and stock take turns, so that a slow moment of the machine hits both.
  std::string program = "qce-bench";
  std::string interleaved = "--benchmark_enable_random_interleaving=true";
  char* options[] = {program.data(), interleaved.data()};
  int optionCount = 2;
  benchmark::Initialize(&optionCount, options);

  const std::vector<std::pair<std::string, std::size_t>> sizes =
      quick ? std::vector<std::pair<std::string, std::size_t>>{{"10k", 10000}, {"100k", 100000}}
            : std::vector<std::pair<std::string, std::size_t>>{
                  {"10k", 10000}, {"100k", 100000}, {"1M", 1000000}};
  Measured measured;
  Collector collector(measured);
  const auto run = [&collector, &pattern] {
    benchmark::RunSpecifiedBenchmarks(&collector, pattern);
    benchmark::ClearRegisteredBenchmarks();
  };
  for (const auto& [label, count] : sizes) {
    // One size after the other, each torn down before the next: memory stays honest.
    const Rows rows(count, 20);
    // Of a million, stock is reported only, and slow: once.
    const int repetitions = count > 100000 ? 3 : 9;
    const int stockRepetitions = count > 100000 ? 1 : 9;
    Fixture<Ours> ours(rows);
    Fixture<Stock> stock(rows);
    const std::string at = "/" + label;
    addFill<Ours>("fill/ours" + at, repetitions, rows);
    addFill<Stock>("fill/stock" + at, stockRepetitions, rows);
    // Before anything else lives on the heap, as in a program that opens its project.
    run();

    add("text/ours" + at, repetitions, [&ours] {
      return seconds([&ours] {
        readAll(ours.get().filter(), {}, [](const QModelIndex& index) {
          benchmark::DoNotOptimize(index.data(Qt::DisplayRole).toString());
        });
      });
    });
    add("text/stock" + at, stockRepetitions, [&stock] {
      const QLocale locale;
      return seconds([&stock, &locale] {
        readAll(stock.get().proxy(), {}, [&stock, &locale](const QModelIndex& index) {
          benchmark::DoNotOptimize(
              stock.get().delegate().displayText(index.data(Qt::DisplayRole), locale));
        });
      });
    });
    run();  // what is read is read in the order of opening: before the sorts
    add("condition/ours" + at, repetitions, [&ours] {
      Ours& side = ours.get();
      countAll(side.filter());  // a view has asked for all rows before
      const double time = seconds([&side] {
        side.filterByCondition("钢", "DN1");
        benchmark::DoNotOptimize(countAll(side.filter()));
      });
      ours.get().cancelCondition();
      return time;
    });
    add("condition/stock" + at, stockRepetitions, [&stock] {
      QSortFilterProxyModel& proxy = stock.get().proxy();
      proxy.setFilterKeyColumn(2);
      countAll(proxy);
      const double time = seconds([&proxy] {
        proxy.setFilterFixedString("钢");
        benchmark::DoNotOptimize(countAll(proxy));
      });
      proxy.setFilterFixedString({});
      return time;
    });
    run();
    for (const auto& [what, column] : {std::pair<const char*, int>{"name", 2}, {"quantity", 5}}) {
      add(std::string("sort-") + what + "/ours" + at, repetitions, [&ours, c = column] {
        ours.get().sort(1, Qt::AscendingOrder);  // from the order of the codes
        return ours.get().sort(c, Qt::AscendingOrder);
      });
      add(std::string("sort-") + what + "/stock" + at, stockRepetitions, [&stock, c = column] {
        QSortFilterProxyModel& proxy = stock.get().proxy();
        proxy.sort(1);
        return seconds([&proxy, c] { proxy.sort(c); });
      });
    }
    run();
    std::fprintf(stderr, "%s measured\n", label.c_str());
  }

  // Pooling: one bill with many rows, and many bills.
  const std::vector<std::pair<std::string, int>> billCounts = {
      {"20 bills", 20}, {"200 bills", 200}, {"2000 bills", 2000}};
  {
    Pooling parent(1, 10000);
    add("pooling-check/ours", 9, [&parent] { return parent.check(); });
    add("pooling-check/stock", 9, [&parent] { return parent.announce(); });
    run();
    std::vector<std::unique_ptr<Pooling>> projects;
    for (const auto& [label, bills] : billCounts) {
      projects.push_back(std::make_unique<Pooling>(bills, 50));
      add("pooling-open/" + label, 5, [&project = *projects.back()] { return project.open(); });
    }
    run();
  }

  for (const auto& [label, count] :
       {std::pair<const char*, std::size_t>{"20k", 20000}, {"100k", 100000}}) {
    auto tree = std::make_shared<BillTree>(count);
    const std::string at = std::string("/") + label;
    add("tree-condition/ours" + at, 9, [tree] { return tree->filter(); });
    add("tree-condition/scan" + at, 9, [tree] { return tree->scan(); });
    add("tree-expand/ours" + at, 5, [tree] { return tree->expand(); });
    run();
  }

  std::vector<Figure> figures;
  const auto compare = [&](const std::string& name, const std::string& what,
                           const std::string& suffix, const std::string& unit, double bound) {
    for (const auto& size : sizes) {
      figures.push_back({name + ", " + size.first, what + "/ours/" + size.first + suffix,
                         what + "/stock/" + size.first + suffix, unit,
                         size.first == "100k" ? bound : 0});
    }
    if (!quick) {
      figures.push_back({name + ", growth 100k to 1M", what + "/ours/1M" + suffix,
                         what + "/ours/100k" + suffix, unit, 15});
    }
  };
  compare("fill, time", "fill", "", "ms", 0.5);
  compare("fill, memory", "fill", "/bytes", "MB", 0.5);
  compare("display text of all cells", "text", "", "ms", 1.0);
  compare("condition filter, two boxes", "condition", "", "ms", 0.5);
  compare("sort by name (pinyin)", "sort-name", "", "ms", 0.5);
  compare("sort by quantity", "sort-quantity", "", "ms", 0.5);
  figures.push_back({"check a parent with 10,000 rows (stock: announcements)", "pooling-check/ours",
                     "pooling-check/stock", "ms", 2.0});
  for (std::size_t i = 1; i < billCounts.size(); ++i) {
    figures.push_back({"open the pooling dialog, growth to " + billCounts[i].first,
                       "pooling-open/" + billCounts[i].first,
                       "pooling-open/" + billCounts[i - 1].first, "ms", 15});
  }
  figures.push_back({"tree filter, both boxes, against a plain scan, 100k",
                     "tree-condition/ours/100k", "tree-condition/scan/100k", "ms", 3});
  // What is out of the processor's caches takes longer; a quadratic share would make it 5.
  figures.push_back({"expanding 1000 rows of the filtered tree, 20k to 100k",
                     "tree-expand/ours/100k", "tree-expand/ours/20k", "ms", 2.5});
  return report(measured, figures) ? 0 : 1;
}
