#include <random>

#include "tests/support/files.h"
#include "tests/support/rows.h"
#include "workbench/exchange/sample_generator.h"
#include "workbench/exchange/source_reader.h"
#include "workbench/exchange/source_writer.h"

using namespace exchange;
using costing::Decimal;

namespace {

constexpr SourceKind AllKinds[] = {SourceKind::Tender,        SourceKind::Bid,
                                   SourceKind::ControlPrice,  SourceKind::ElectronicTender,
                                   SourceKind::ElectronicBid, SourceKind::Standard};

// Every element and attribute of the format once. Line numbers in the tests count from the
// declaration.
const char Small[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<costSource version="1" kind="TBQD">
<project id="P" name="办公楼" code="X-1" builder="甲" tenderer="乙" region="华东" date="2026-03-15" pricingBasis="定额" structure="框架" taxMethod="一般计税" taxRate="9" buildingArea="120.5"/>
<costAccounts>
<account id="A1" code="01" name="人工费" defaultFor="人工"><account id="A11" code="0101" name="土建"/></account>
</costAccounts>
<works>
<singleProject id="S" code="01" name="主楼">
<unitWork id="W" code="01" name="建筑工程" specialty="土建">
<section id="C" code="0101" name="土石方"><section id="CC" code="010101" name="土方">
<bill id="B" code="010101001001" name="平整场地" features="1.三类土&#10;2.场内" unit="m2" quantity="3.335" unitPrice="10.01" amount="33.38" account="A11">
<resource id="R1" category="人工" code="0001" name="工日" spec="一类" unit="工日" content="0.015" price="168.00" taxRate="3" priceAdjustable="true"/>
<resource id="R2" category="材料" code="0002" name="砂" unit="m3" content="1.5" price="1.0025" taxRate="3" ownerSupplied="true" provisional="true" account="A11"/>
</bill></section></section>
<totals bills="33.38" resources="13.42" fees="2.01"/>
</unitWork>
</singleProject>
</works>
<indirectFees>
<group id="G" code="01" name="现场管理费"><group id="GG" code="0101" name="人员"><item id="F1" code="010101" name="工资" amount="100.00" account="A11"/></group></group>
<group id="G2" name="安全文明施工费" unitWork="W"><item id="F2" name="安全" basis="直接费" base="13.42" rate="15" amount="2.01"/></group>
</indirectFees>
<totals bills="33.38" resources="13.42" fees="102.01"/>
</costSource>
)";

// What makes the small file malformed: name | what is replaced | by what | what the refusal must
// say | its line.
const char Malformed[] = R"(
amount of a line beyond the bound | quantity="3.335" unitPrice="10.01" | quantity="999999999" unitPrice="999999999" | 过大 | 11
duplicate id of a resource | id="R2" | id="R1" | 与前面的元素重复 | 13
missing id | <bill id="B" | <bill | 缺失 | 11
id with a blank | id="B" | id="B 1" | 不允许的字符 | 11
unknown account | amount="33.38" account="A11" | amount="33.38" account="A99" | 不存在 | 11
unknown unit work | unitWork="W" | unitWork="X" | 不存在 | 21
unit work on a lower group | id="GG" | id="GG" unitWork="W" | 不该出现 | 20
default category twice | <account id="A11" | <account defaultFor="人工" id="A11" | 只能指定一次 | 5
resource outside a bill | <section id="C" | <resource/><section id="C" | 不能出现在 | 10
unit work outside a single project | <singleProject  | <unitWork/><singleProject  | 不能出现在 | 8
resource in a resource | priceAdjustable="true"/> | ><resource/></resource> | 不能再有元素 | 12
no project | <project  | <works/><project  | 工程概况 | 3
works before accounts | <costAccounts> | <works/><costAccounts> | 单项工程 | 4
no totals of the unit work | <totals bills="33.38" resources="13.42" fees="2.01"/> |  | 缺少合计 | 16
totals twice | <totals bills="33.38" resources="13.42" fees="2.01"/> | <totals bills="33.38" resources="13.42" fees="2.01"/><totals bills="33.38" resources="13.42" fees="2.01"/> | 结束标记 | 15
bill beside a section | <section id="CC" | <section id="CD" name="x"/><bill/><section id="CC" | 既有子分部又有清单 | 10
fee beside a group | </group></group> | </group><item id="FX" name="x" amount="0"/></group> | 既有子分组又有间接费 | 20
rate without base | base="13.42"  |  | 必须同时给出 | 21
unknown element | <section id="C" | <table/><section id="C" | 不认识的元素 | 10
unknown attribute | <unitWork  | <unitWork colour="red"  | 不认识的属性 | 9
text between elements | <works> | <works>多余 | 元素之间有文字 | 7
character data section | <works> | <works><![CDATA[ ]]> | 元素之间有文字 | 7
bill code of 11 digits | 010101001001 | 01010100100 | 12 位数字 | 11
blank name | name="平整场地" | name=" " | 为空 | 11
line break in a name | name="平整场地" | name="平整&#10;场地" | 换行 | 11
missing unit | unit="m2" |  | 缺失 | 11
flag that is no flag | priceAdjustable="true" | priceAdjustable="是" | true 或 false | 12
impossible date | 2026-03-15 | 2026-02-30 | 不是有效日期 | 3
bid without tenderer | tenderer="乙" |  | 缺失 | 3
unknown kind | kind="TBQD" | kind="XYZ" | 不可识别 | 2
kind in small letters | kind="TBQD" | kind="tbqd" | 不可识别 | 2
newer version | version="1" kind | version="2" kind | 请升级程序 | 2
tender with bill prices | kind="TBQD" | kind="ZBQD" | 不该出现 | 11
standard file with money | kind="TBQD" | kind="GCLQD" | 不该出现 | 11
doctype | <costSource | <!DOCTYPE costSource><costSource | DOCTYPE | 2
undefined entity | name="平整场地" | name="&nbsp;" | XML | 11
character reference to nothing | name="平整场地" | name="&#0;" | XML | 11
processing instruction | <works> | <?run rm?><works> | 处理指令 | 7
attribute twice | <bill id="B" | <bill id="B" id="B" | 属性重复 | 11
unclosed tag | </bill> |  | 不匹配 | 14
bare ampersand | name="平整场地" | name="平整&场地" | XML | 11
second root | </costSource> | </costSource><costSource/> | 多余内容 | 24
wrong encoding declared | UTF-8 | GB18030 | 只接受 UTF-8 | 1
)";

// Likewise, what makes its money differ.
const char DifferingMoney[] = R"(
bill by one cent | amount="33.38" | amount="33.39" | 申报 33.39，计算得 33.38 | 11
unit work | resources="13.42" fees="2.01" | resources="13.43" fees="2.01" | 单位工程“建筑工程” | 15
fees of the unit work | fees="2.01" | fees="2.02" | 间接费合计申报 2.02，读入 2.01 | 15
project | fees="102.01" | fees="102.00" | 工程“办公楼” | 23
fee item | rate="15" amount="2.01" | rate="15" amount="2.02" | 相差 -0.01 | 21
)";

ReadResult readBytes(QByteArray bytes, bool allowMoneyDifference = false) {
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  SourceReader reader;
  reader.setAllowMoneyDifference(allowMoneyDifference);
  return reader.read(buffer);
}

QByteArray bytesOf(const SourceDocument& document) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  SourceWriter::write(document, buffer);
  return buffer.data();
}

QString samplePath(const char* name) {
  return QStringLiteral(QCE_SOURCE_DIR "/samples/") + QString::fromUtf8(name);
}

Decimal decimal(const char* text) {
  return Decimal::parse(text).value();
}

/// `times` pieces, "#" replaced by 0, 1, …
QByteArray numbered(const QByteArray& piece, int times) {
  QByteArray all;
  for (int i = 0; i < times; ++i) all += QByteArray(piece).replace('#', QByteArray::number(i));
  return all;
}

/// A table of text: a row a line, its cells parted by " | ".
QList<QStringList> table(const char* text) {
  QList<QStringList> rows;
  for (const QString& line : QString::fromUtf8(text).split('\n', Qt::SkipEmptyParts)) {
    rows << line.split(" | ");
  }
  return rows;
}

}  // namespace

class SourceFilesTest : public QObject {
  Q_OBJECT

 private slots:
  void readsEveryElementAndAttribute() {
    const ReadResult result = readBytes(Small);
    QVERIFY2(result.ok(), qPrintable(result.message()));
    const SourceDocument& document = result.document;
    QCOMPARE(document.kind, SourceKind::Bid);
    const ProjectFacts& facts = document.facts;
    const std::string texts = facts.name + "|" + facts.code + "|" + facts.builder + "|" +
                              facts.tenderer + "|" + facts.region + "|" + facts.date + "|" +
                              facts.pricingBasis + "|" + facts.structure + "|" +
                              nameOf(facts.taxMethod) + "|" + facts.taxRate.toString() + "|" +
                              facts.buildingArea.toString();
    QCOMPARE(texts, std::string("办公楼|X-1|甲|乙|华东|2026-03-15|定额|框架|一般计税|9|120.5"));
    QCOMPARE(document.accounts.at(0).children.at(0).name, std::string("土建"));
    QVERIFY(document.accounts.at(0).defaultFor == ResourceCategory::Labour);

    const UnitWork& work = document.projects.at(0).unitWorks.at(0);
    const Bill& bill = work.sections.at(0).sections.at(0).bills.at(0);
    QCOMPARE(bill.code, std::string("010101001001"));
    QCOMPARE(bill.features, std::string("1.三类土\n2.场内"));
    QCOMPARE(bill.accountId, std::string("A11"));
    const Resource& labour = bill.resources.at(0);
    const Resource& sand = bill.resources.at(1);
    QVERIFY(labour.category == ResourceCategory::Labour &&
            sand.category == ResourceCategory::Material);
    QVERIFY(labour.priceAdjustable && !labour.ownerSupplied && !labour.provisional);
    QVERIFY(sand.ownerSupplied && sand.provisional && !sand.priceAdjustable);
    QVERIFY(sand.price == decimal("1.0025") && sand.content == decimal("1.5"));
    QCOMPARE(labour.spec, std::string("一类"));

    const IndirectFeeGroup& wages = document.feeGroups.at(0).groups.at(0);
    QVERIFY(!wages.items.at(0).base && wages.items.at(0).declaredAmount == Decimal(100));
    QCOMPARE(document.feeGroups.at(1).unitWorkId, std::string("W"));
    QVERIFY(document.feeGroups.at(1).items.at(0).rate == Decimal(15));

    // 3.335 × 0.015 × 168 = 8.4042; 3.335 × 1.5 × 1.0025 = 5.01500625, each rounded.
    const MoneyReport& report = result.report;
    QVERIFY(report.agrees());
    QCOMPARE(report.project.resources.read.toString(2), std::string("13.42"));
  }

  void samplesAreWhatTheGeneratorMakes_data() {
    const tests::Rows<int> row;
    for (const SourceKind kind : AllKinds) row(extensionOf(kind).c_str(), static_cast<int>(kind));
  }
  void samplesAreWhatTheGeneratorMakes() {
    const auto [kind] = tests::fetch<int>();
    const SourceDocument document = SampleGenerator::officeBuilding(static_cast<SourceKind>(kind));
    const QString path = samplePath("办公楼.") + QString::fromStdString(extensionOf(document.kind));
    QVERIFY2(bytesOf(document) == tests::contentOf(path), "samples/ is not what is made");
    const PeekResult peek = peekKind(path);
    QVERIFY2(peek.kind == document.kind, qPrintable(peek.reason));
    const ReadResult result = SourceReader().read(path);
    QVERIFY2(result.ok() && result.report.agrees(), qPrintable(result.message()));
    const MoneyReport& report = result.report;
    const KindRules rules = rulesOf(document.kind);
    QCOMPARE(report.project.bills.declared.has_value(), rules.billPrices);
    QCOMPARE(report.project.resources.declared.has_value(), rules.resourcePrices);
    QCOMPARE(!report.project.fees.read.isZero(), rules.fees);
    QVERIFY(countsOf(result.document).resources >= 900);
    // One code stands for one resource.
    std::map<std::string, std::string> catalogue;
    for (const UnitWork& work : document.projects.at(0).unitWorks) {
      for (const Section& section : work.sections) {
        for (const Bill& bill : section.bills) {
          for (const Resource& resource : bill.resources) {
            const std::string row = resource.name + resource.spec + resource.unit +
                                    resource.price.toString() + resource.accountId;
            const auto known = catalogue.emplace(resource.code, row).first;
            QVERIFY2(known->second == row, resource.code.c_str());
          }
        }
      }
    }
    QVERIFY(catalogue.size() >= 120);
    const Money money = moneyOf(document);
    if (document.kind == SourceKind::Bid) QVERIFY(money.bills > money.resources + money.fees);
  }

  void writesWhatItRead_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("every element") << QByteArray(Small);
    QTest::newRow("office building")
        << bytesOf(SampleGenerator::officeBuilding(SourceKind::ElectronicBid));
  }
  void writesWhatItRead() {
    QFETCH(QByteArray, bytes);
    const ReadResult first = readBytes(bytes);
    QVERIFY2(first.ok(), qPrintable(first.message()));
    const QByteArray written = bytesOf(first.document);
    const ReadResult second = readBytes(written);
    QVERIFY2(second.ok(), qPrintable(second.message()));
    QCOMPARE(bytesOf(second.document), written);
    QCOMPARE(second.report.toText(), first.report.toText());
  }

  void roundsHalfUpOnEachLine() {
    QCOMPARE(billAmount(decimal("0.5"), decimal("0.01")).toString(2), std::string("0.01"));
    QCOMPARE(billAmount(decimal("0.4999"), decimal("0.01")).toString(2), std::string("0.00"));
    QCOMPARE(resourceAmount(decimal("3.335"), decimal("0.1"), decimal("0.03")).toString(2),
             std::string("0.01"));
    // Three lines of 0.005 make 0.03, not 0.015 rounded.
    Bill bill;
    bill.quantity = 1;
    Resource resource;
    resource.content = decimal("0.5");
    resource.price = decimal("0.01");
    bill.resources = {resource, resource, resource};
    QCOMPARE(moneyOf(bill).resources.toString(2), std::string("0.03"));
    QCOMPARE(feeAmount(decimal("13.42"), decimal("15")).toString(2), std::string("2.01"));
  }

  void refusesMoneyThatDiffersUnlessAllowed_data() {
    const tests::Rows<QByteArray, QByteArray, QString, int> row;
    for (const QStringList& cells : table(DifferingMoney)) {
      QCOMPARE(cells.size(), 5);
      row(qPrintable(cells[0]), cells[1].toUtf8(), cells[2].toUtf8(), cells[3], cells[4].toInt());
    }
  }
  void refusesMoneyThatDiffersUnlessAllowed() {
    const auto [from, to, fragment, line] = tests::fetch<QByteArray, QByteArray, QString, int>();
    QByteArray bytes = Small;
    QCOMPARE(bytes.count(from), 1);
    bytes.replace(from, to);
    const ReadResult refused = readBytes(bytes);
    QVERIFY(refused.status == ReadResult::Status::MoneyDiffers);
    QVERIFY(refused.document.projects.empty());
    QVERIFY2(refused.reason.contains(fragment), qPrintable(refused.message()));
    QCOMPARE(refused.line, qint64(line));
    QVERIFY(refused.column >= 1);

    const ReadResult allowed = readBytes(bytes, true);
    QVERIFY(allowed.ok());
    QVERIFY(!allowed.report.agrees());
    QVERIFY(allowed.report.toText().contains(QStringLiteral("申报")));
    QCOMPARE(allowed.report.project.bills.read.toString(2), std::string("33.38"));
  }

  void refusesMalformed_data() {
    const tests::Rows<QByteArray, QString, int> whole;
    // `from` occurs in the small file; its first occurrence becomes `to`.
    const auto row = [&whole](const char* name, const QByteArray& from, const QByteArray& to,
                              const char* fragment, int line) {
      QByteArray bytes = Small;
      const int at = bytes.indexOf(from);
      Q_ASSERT(at >= 0);
      bytes.replace(at, from.size(), to);
      whole(name, bytes, fragment, line);
    };
    for (const QStringList& cells : table(Malformed)) {
      QCOMPARE(cells.size(), 5);
      row(qPrintable(cells[0]), cells[1].toUtf8(), cells[2].toUtf8(), qPrintable(cells[3]),
          cells[4].toInt());
    }

    // Figures: each of the many attributes that hold one goes through the same rules.
    const std::tuple<QByteArray, int, int> figures[] = {
        // attribute, its line and its places
        {"quantity=\"3.335\"", 11, 4},  {"unitPrice=\"10.01\"", 11, 2},
        {"content=\"0.015\"", 12, 6},   {"price=\"168.00\"", 12, 4},
        {"taxRate=\"9\"", 3, 4},        {"buildingArea=\"120.5\"", 3, 2},
        {"resources=\"13.42\"", 15, 2}, {"base=\"13.42\"", 21, 2}};
    const std::pair<const char*, QList<QByteArray>> badValues[] = {
        {"不是数字", {"NaN", "inf", " 1", "+1", "１２", "0x10", "1.2.3", ".5"}},
        {"过大或过长", {"99999999999999999999", "0." + QByteArray("0").repeated(51) + "1"}},
        {"是负数", {"-1"}},
        {"科学计数法", {"1e3"}},
        {"千位分隔符", {"1,000"}},
        {"小数点后", {"1."}},
        {"为空", {""}}};
    for (const auto& [attribute, line, places] : figures) {
      const QByteArray name = attribute.left(attribute.indexOf('='));
      for (const auto& [fragment, values] : badValues) {
        for (const QByteArray& value : values) {
          row((name + " of '" + value + "'").constData(), attribute, name + "=\"" + value + "\"",
              fragment, line);
        }
      }
      row((name + " too fine").constData(), attribute,
          name + "=\"1." + QByteArray("0").repeated(places) + "1\"", "小数超过", line);
      if (name != "buildingArea" && name != "base") {
        row((name + " missing").constData(), attribute, "", "缺失", line);
      }
    }

    row("unit too long", "unit=\"m2\"", "unit=\"" + QByteArray("m").repeated(21) + "\"",
        "超过 20 个", 11);
    row("features too long", "features=\"", "features=\"" + QByteArray("特").repeated(4001), "上限",
        11);

    QByteArray bomb = "<!DOCTYPE costSource [<!ENTITY a \"ha\">";
    for (char c = 'b'; c <= 'p'; ++c) {
      const char before = static_cast<char>(c - 1);
      bomb += QByteArray("<!ENTITY ") + c + " \"" + (QByteArray("&") + before + ";").repeated(10) +
              "\">";
    }
    row("entity bomb", "<costSource", bomb + "]><costSource builder=\"&p;\"", "DOCTYPE", 2);
    row("NUL", "name=\"平整场地\"", QByteArray("name=\"平\0整\"", 14), "控制字符", 11);
    row("control character", "name=\"平整场地\"", "name=\"\x01\"", "控制字符", 11);
    row("overlong form", "name=\"平整场地\"", "name=\"\xC0\xAF\"", "UTF-8", 11);
    row("character beyond Unicode", "name=\"平整场地\"", "name=\"\xF4\x90\x80\x80\"", "UTF-8", 11);
    row("noncharacter", "name=\"平整场地\"", "name=\"\xEF\xBF\xBF\"", "不允许的字符", 11);
    row("GBK text under a UTF-8 declaration", "平整场地", "\xC6\xBD\xD5\xFB\xB3\xA1\xB5\xD8",
        "UTF-8", 11);

    row("attribute of 10 MB", "features=\"", "features=\"" + QByteArray("a").repeated(10 << 20),
        "超过 256 KB", 11);
    row("comment of 1 MB", "<works>", "<!--" + QByteArray("< ").repeated(1 << 19) + "--><works>",
        "超过 256 KB", 7);
    row("text of 1 MB", "<works>", "<works>" + QByteArray("字").repeated(1 << 19), "256 KB", 7);
    row("sections too deep", "<section id=\"C\"",
        numbered("<section id=\"n#\" name=\"x\">", 9) + QByteArray("</section>").repeated(9) +
            "<section id=\"C\"",
        "嵌套超过 8 层", 10);
    row("attributes too many", "<works>", "<works" + numbered(" a#=\"\"", 40) + ">", "属性过多", 7);

    // Whole files
    const QByteArray small = Small;
    const QString unicode = QString::fromUtf8(small);
    const QByteArray utf16(reinterpret_cast<const char*>(unicode.utf16()), unicode.size() * 2);
    whole("empty", {}, "不完整", 1);
    whole("only a byte order mark", "\xEF\xBB\xBF", "不完整", 1);
    whole("UTF-16 with a mark", "\xFF\xFE" + utf16, "UTF-16", 1);
    whole("UTF-16 without a mark", utf16, "控制字符", 1);
    whole("plain text", "项目,单价\n1,2\n", "XML", 1);
    whole("zip archive", QByteArray("PK\x03\x04\x14\0\0\0", 8), "控制字符", 1);
    whole("other XML", "<?xml version=\"1.0\"?><svg/>", "不是造价源文件", 1);
    whole("cut within a character", small.left(small.indexOf("办") + 1), "UTF-8", 3);
  }
  void refusesMalformed() {
    const auto [bytes, fragment, line] = tests::fetch<QByteArray, QString, int>();
    const ReadResult result = readBytes(bytes);
    QVERIFY2(result.status == ReadResult::Status::Refused, qPrintable(result.message()));
    QVERIFY(result.document.projects.empty());
    QVERIFY2(result.reason.contains(QRegularExpression(fragment)), qPrintable(result.message()));
    QVERIFY2(result.line == line, qPrintable(result.message()));
    QVERIFY2(result.column >= 1, qPrintable(result.message()));
    QVERIFY2(result.reason.size() < 200, qPrintable(result.reason));
  }

  void refusesFileCutShortAnywhere() {
    const QByteArray small = Small;
    const int end = small.lastIndexOf('>');
    for (int size = 0; size <= end; ++size) {
      const ReadResult result = readBytes(small.left(size));
      QVERIFY2(result.status == ReadResult::Status::Refused, qPrintable(QString::number(size)));
      QVERIFY2(result.line >= 1 && result.column >= 1 && !result.reason.isEmpty(),
               qPrintable(QString::number(size) + result.message()));
    }
    const QByteArray office = tests::contentOf(samplePath("办公楼.TBQD"));
    QVERIFY(office.size() > 100000);
    for (int size = 0; size < office.lastIndexOf('>'); size += 6007) {
      QVERIFY(readBytes(office.left(size)).status == ReadResult::Status::Refused);
    }
  }

  void survivesDamagedBytes() {
    std::mt19937 dice(20260315);
    const QByteArray small = Small;
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
      QByteArray bytes = small;
      const int faults = 1 + static_cast<int>(dice() % 3);
      for (int i = 0; i < faults; ++i) {
        const int at = static_cast<int>(dice() % static_cast<unsigned>(bytes.size()));
        if (dice() % 4 == 0) {
          bytes.remove(at, 1 + static_cast<int>(dice() % 20));
        } else {
          bytes[at] = static_cast<char>(dice());
        }
      }
      const ReadResult result = readBytes(bytes);
      if (result.ok()) {
        QVERIFY(result.report.agrees());
        continue;
      }
      ++refused;
      QVERIFY2(!result.reason.isEmpty() && result.line >= 1 && result.column >= 1,
               qPrintable(QString::fromUtf8(bytes)));
    }
    QVERIFY(refused > 2000);
  }

  void acceptsHarmlessVariants_data() {
    const tests::Rows<QByteArray> row;
    const QByteArray small = Small;
    row("byte order mark", "\xEF\xBB\xBF" + small);
    row("line ends of Windows", QByteArray(small).replace('\n', "\r\n"));
    row("no declaration", small.mid(small.indexOf('\n') + 1));
    row("comments", QByteArray(small).replace("<works>", "<!-- ok --><works><!---->"));
    row("trailing comment and blanks", small + "\n<!-- end -->\n");
    row("single quotes", QByteArray(small).replace("id=\"B\"", "id='B'"));
    row("trailing zeros", QByteArray(small).replace("\"3.335\"", "\"0003.3350\""));
    row("character outside the basic plane",
        QByteArray(small).replace("name=\"砂\"", "name=\"𠮷\""));
    row("zero quantity is a bill still to be measured",
        QByteArray(small)
            .replace("quantity=\"3.335\"", "quantity=\"0\"")
            .replace("amount=\"33.38\"", "amount=\"0\"")
            .replace("bills=\"33.38\" resources=\"13.42\"", "bills=\"0\" resources=\"0\""));
  }
  void acceptsHarmlessVariants() {
    const auto [bytes] = tests::fetch<QByteArray>();
    const ReadResult result = readBytes(bytes);
    QVERIFY2(result.ok(), qPrintable(result.message()));
    QVERIFY(result.report.agrees());
  }

  void peeksAndExplains_data() {
    // fragment: empty: accepted
    const tests::Rows<QString, QByteArray, QString> row;
    const QByteArray small = Small;
    row("right kind", "a.TBQD", small, "");
    row("extension in small letters", "b.tbqd", small, "");
    row("several points", "项目.v2.TbQd", small, "");
    row("other kind", "c.ZBQD", small, "文件内容是投标文件（TBQD），与扩展名“.ZBQD”不符");
    row("unknown extension", "d.xml", small, "扩展名“xml”不可识别");
    row("no extension", "e", small, "扩展名“”不可识别");
    row("empty file", "f.TBQD", QByteArray(), "是空的");
    row("not XML", "g.TBQD", QByteArray("hello"), "不是规范的 XML");
    row("other XML", "h.TBQD", QByteArray("<svg/>"), "不是造价源文件");
  }
  void peeksAndExplains() {
    const auto [name, bytes, fragment] = tests::fetch<QString, QByteArray, QString>();
    QTemporaryDir folder;
    const QString path = folder.filePath(name);
    tests::writeFile(path, bytes);
    const PeekResult peek = peekKind(path);
    const ReadResult read = SourceReader().read(path);
    QCOMPARE(peek.kind.has_value(), fragment.isEmpty());
    QVERIFY2(peek.reason.contains(fragment), qPrintable(peek.reason));
    QCOMPARE(read.ok(), fragment.isEmpty());
    QVERIFY2(read.reason.contains(fragment), qPrintable(read.reason));

    // What stands in the way of a file is told apart too.
    QVERIFY(peekKind(folder.filePath("none.TBQD")).reason.contains(QStringLiteral("不存在")));
    QVERIFY(peekKind({}).reason.contains(QStringLiteral("没有选择文件")));
    QDir(folder.path()).mkdir("dir.TBQD");
    QVERIFY(peekKind(folder.filePath("dir.TBQD")).reason.contains(QStringLiteral("是文件夹")));
  }

  void generatesAnySizeReproducibly() {
    QTemporaryDir folder;
    const auto make = [&](const char* name, int resources, quint64 seed) {
      const QString path = folder.filePath(name);
      const QString fault = SampleGenerator::generate(resources, seed, path);
      return fault.isEmpty() ? tests::contentOf(path) : fault.toUtf8();
    };
    const auto fault = [&](qint64 resources, const char* name) {
      return SampleGenerator::generate(resources, 1, folder.filePath(name));
    };
    QVERIFY(fault(10, "a.txt").contains(QStringLiteral("不可识别")));
    QVERIFY(fault(0, "a.TBQD").contains(QStringLiteral("超出范围")));
    QVERIFY(fault(SampleGenerator::MostResources + 1, "a.TBQD").contains("超出范围"));
    QVERIFY(fault(10, "none/a.TBQD").contains(QStringLiteral("无法写入")));
    QVERIFY(SampleGenerator::generate(50000, 1, folder.filePath("a.TBQD"), [](qint64) {
              return false;
            }).contains(QStringLiteral("已取消")));
    QVERIFY(QDir(folder.path()).isEmpty());

    const QByteArray first = make("a.TBQD", 9001, 7);
    QVERIFY(make("b.tbqd", 9001, 7) == first);
    QVERIFY(make("c.TBQD", 9001, 8) != first);
    const ReadResult result = readBytes(first);
    QVERIFY2(result.ok(), qPrintable(result.message()));
    QCOMPARE(countsOf(result.document).resources, std::size_t(9001));
    QVERIFY(result.document.projects.at(0).unitWorks.size() > 1);
    SourceReader reader;
    reader.setProgress([&](qint64 done, qint64 total) { return done < total / 2; });
    const ReadResult cancelled = reader.read(folder.filePath("a.TBQD"));
    QVERIFY(cancelled.status == ReadResult::Status::Cancelled);
    QVERIFY(cancelled.document.projects.empty());
    for (const SourceKind kind : AllKinds) {
      const QString path = folder.filePath("one." + QString::fromStdString(extensionOf(kind)));
      QCOMPARE(SampleGenerator::generate(1, 1, path), QString());
      const ReadResult one = SourceReader().read(path);
      QVERIFY2(one.ok(), qPrintable(one.message()));
      QCOMPARE(countsOf(one.document).resources, std::size_t(1));
    }
  }

  void keepsTheOldFileWhenWritingFails() {
    QTemporaryDir folder;
    const SourceDocument document = readBytes(Small).document;
    const QString path = folder.filePath("a.TBQD");
    QCOMPARE(SourceWriter::writeFile(document, path), QString());
    const QByteArray before = tests::contentOf(path);
    QVERIFY(readBytes(before).ok());
    QVERIFY(SourceWriter::writeFile(document, folder.filePath("a.ZBQD")).contains("TBQD"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{"a.TBQD"});
    QCOMPARE(tests::contentOf(path), before);
  }
};

QTEST_GUILESS_MAIN(SourceFilesTest)
#include "tst_source_files.moc"
