#include <QtTest>

#include "workbench/records/record.h"
#include "workbench/records/text.h"

using records::Branch;
using records::Group;
using records::Record;

namespace {

/// "1(3 2) 4": ids, those below in brackets; marks a row that does not know its number or parent.
QString shown(const records::RowList& rows, const proxy::Element* parent) {
  QStringList parts;
  for (int row = 0; row < rows.size(); ++row) {
    const Record* record = rows.at(row);
    QString part = QString::number(record->id());
    if (record->row() != row || record->parent() != parent) part += '!';
    if (const auto* branch = dynamic_cast<const Branch*>(record)) {
      part += '(' + shown(branch->rows(), branch) + ')';
    }
    parts << part;
  }
  return parts.join(' ');
}

bool byId(proxy::Element* a, proxy::Element* b) {
  return a->id() < b->id();
}

}  // namespace

class RecordTest : public QObject {
  Q_OBJECT

 private slots:
  void keepsRowNumbersTrue() {
    scoped_refptr<Group> group(new Group);
    for (int id = 1; id <= 4; ++id) group->rows().append(scoped_refptr<Record>(new Record(id)));
    group->rows().insert(1, scoped_refptr<Record>(new Record(9)));
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("1 9 2 3 4"));
    group->rows().swap(0, 4);
    const scoped_refptr<Record> taken = group->rows().take(1);
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("4 2 3 1"));
    QCOMPARE(taken->id(), 9);
    QCOMPARE(taken->referenceCount(), std::size_t(1));
    QVERIFY(group->member(4) == nullptr && group->member(-1) == nullptr);
  }

  void reordersAtEveryLevel() {
    scoped_refptr<Group> group(new Group);
    for (const int id : {20, 10}) {
      auto* branch = new Branch(id);
      group->rows().append(scoped_refptr<Record>(branch));
      for (const int below : {3, 1, 2}) {
        branch->rows().append(scoped_refptr<Record>(new Record(id + below)));
      }
    }
    const scoped_refptr<proxy::Element> kept(group->member(0)->child(2));
    group->reorder(byId);
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("10(11 12 13) 20(21 22 23)"));
    QCOMPARE(kept->id(), 22);
    QCOMPARE(kept->row(), 1);
    QCOMPARE(kept->referenceCount(), std::size_t(2));
    // Equal elements stay in their order.
    group->reorder(
        [](proxy::Element* a, proxy::Element* b) { return a->id() / 10 > b->id() / 10; });
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("20(21 22 23) 10(11 12 13)"));
  }

  void answersOldRowsWhileAsked() {
    scoped_refptr<Group> group(new Group);
    for (const int id : {5, 1, 4, 2, 3})
      group->rows().append(scoped_refptr<Record>(new Record(id)));
    const std::vector<int> oldRowOf = {-1, 1, 3, 4, 2, 0};
    bool asBefore = true;
    group->reorder([&](proxy::Element* a, proxy::Element* b) {
      for (const proxy::Element* element : {a, b}) {
        const int row = oldRowOf[static_cast<std::size_t>(element->id())];
        asBefore = asBefore && element->row() == row && group->member(row) == element;
      }
      return a->id() < b->id();
    });
    QVERIFY(asBefore);
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("1 2 3 4 5"));
  }

  void survivesAThrowingComparison() {
    scoped_refptr<Group> group(new Group);
    for (const int id : {2, 3, 1}) group->rows().append(scoped_refptr<Record>(new Record(id)));
    QVERIFY_EXCEPTION_THROWN(group->reorder([](proxy::Element*, proxy::Element*) -> bool {
      throw std::runtime_error("no order");
    }),
                             std::runtime_error);
    QCOMPARE(shown(group->rows(), nullptr), QStringLiteral("2 3 1"));
  }

  void sharesEqualTexts() {
    records::TextPool pool;
    const records::Text first = pool.intern("螺纹钢");
    for (int i = 0; i < 1000; ++i) pool.intern(std::to_string(i));  // must not move what is there
    QVERIFY(pool.intern("螺纹钢") == first);
    QVERIFY(pool.intern("螺纹钢 ") != first);
    QCOMPARE(first.str(), std::string("螺纹钢"));
    // Together, new and known ones, more than are taken at once, one twice.
    records::Text many[11];
    const std::string far = std::string(40, 'x');
    pool.intern({"螺纹钢", "a", "", far, "a", "5", "b", "c", "d", far, "螺纹钢"}, many[0], many[1],
                many[2], many[3], many[4], many[5], many[6], many[7], many[8], many[9], many[10]);
    QVERIFY(many[0] == first && many[10] == first && many[1] == many[4] && many[3] == many[9]);
    QVERIFY(many[2].empty() && many[5].str() == "5" && many[3].str() == far &&
            many[8].str() == "d");
    QVERIFY(pool.intern("") == records::Text());
  }
};

QTEST_APPLESS_MAIN(RecordTest)
#include "tst_record.moc"
