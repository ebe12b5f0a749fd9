#include "workbench/exchange/source_reader.h"

#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <algorithm>
#include <array>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "workbench/exchange/guarded_device.h"
#include "workbench/exchange/source_attributes.h"

namespace exchange {
namespace {

using costing::Decimal;

constexpr qint64 ProgressBytes = 262144;

struct Cancel {};

QString text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

QString money(const Decimal& value) {
  return text(value.toString(2));
}

// "投标文件（TBQD）"
QString titleOf(SourceKind kind) {
  return QStringLiteral("%1（%2）").arg(text(nameOf(kind)), text(extensionOf(kind)));
}

constexpr ElementName Root{"costSource", "根元素"};
constexpr ElementName Project{"project", "工程概况"};
constexpr ElementName Accounts{"costAccounts", "成本科目表"};
constexpr ElementName Account{"account", "成本科目"};
constexpr ElementName Works{"works", "工程结构"};
constexpr ElementName Single{"singleProject", "单项工程"};
constexpr ElementName Work{"unitWork", "单位工程"};
constexpr ElementName Part{"section", "分部"};
constexpr ElementName BillRow{"bill", "清单"};
constexpr ElementName ResourceRow{"resource", "人材机"};
constexpr ElementName Fees{"indirectFees", "间接费表"};
constexpr ElementName FeeGroup{"group", "间接费分组"};
constexpr ElementName FeeItem{"item", "间接费"};
constexpr ElementName Totals{"totals", "合计"};

constexpr std::array<ElementName, 14> Names{Root,   Project,  Accounts, Account, Works,
                                            Single, Work,     Part,     BillRow, ResourceRow,
                                            Fees,   FeeGroup, FeeItem,  Totals};

constexpr NumberRule Quantity{"1000000000", 4, 9};
constexpr NumberRule Content{"100000", 6, 5};
constexpr NumberRule UnitPrice{"1000000000", 2, 9};
constexpr NumberRule ResourcePrice{"1000000000", 4, 9};
constexpr NumberRule Rate{"1000", 4, 3};
constexpr NumberRule ProjectRate{"100", 4, 3};
constexpr NumberRule Area{"1000000000", 2, 9};
constexpr NumberRule Amount{"10000000000000", 2, 13};
constexpr NumberRule Sum{"10000000000000000000", 2, 19};

QString xmlReason(const QXmlStreamReader& xml) {
  if (xml.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
    return QStringLiteral("文件不完整，内容在此处中断：请重新导出或重新取得完整的文件");
  }
  static const std::array<std::pair<const char*, const char*>, 9> known{{
      {"redefined", "同一元素的属性重复"},
      {"tag mismatch", "开始标记与结束标记不匹配"},
      {"not declared", "引用了未定义的实体"},
      {"xtra content", "根元素之后还有多余内容"},
      {"ncoding", "编码声明有误，只接受 UTF-8"},
      {"character reference", "字符引用有误"},
      {"XML version", "XML 版本声明有误"},
      {"tart tag expected", "此处应为开始标记"},
      {"ntity", "实体引用有误"},
  }};
  QString detail = QStringLiteral("标记书写有误");
  for (const auto& [english, chinese] : known) {
    if (xml.errorString().contains(QLatin1String(english))) {
      detail = QString::fromUtf8(chinese);
      break;
    }
  }
  return QStringLiteral("不是规范的 XML（%1）：请用来源软件重新导出").arg(detail);
}

class Parser {
 public:
  Parser(QIODevice& device, qint64 total, const SourceReader::Progress& progress)
      : guard_(device, SourceBounds::FileBytes, SourceBounds::TokenBytes),
        xml_(&guard_),
        total_(total),
        progress_(progress) {
    xml_.setNamespaceProcessing(false);
  }

  SourceKind readRoot();
  void readBody(ReadResult& result);

  [[noreturn]] void refuse(const QString& reason) const { throw Refusal{line_, column_, reason}; }

 private:
  std::string claimId(Attributes& attributes);
  std::string accountOf(Attributes& attributes) const;
  bool next();
  bool nextIs(const ElementName& element);
  void leaveEmpty(const ElementName& element);
  [[noreturn]] void refuseHere(const QString& reason) const;
  [[noreturn]] void refuseXml() const;
  [[noreturn]] void refuseElement(const ElementName& parent, const QString& expected) const;
  void limit(std::size_t& count, int most, const ElementName& element);
  void limitDepth(int depth, int most, const Attributes& attributes);

  void readFacts(ProjectFacts& facts);
  void readAccounts();
  CostAccount readAccount(int depth);
  void readWorks();
  SingleProject readSingle();
  UnitWork readWork();
  Section readSection(int depth);
  Bill readBill();
  Resource readResource(const Bill& bill);
  void readFees();
  IndirectFeeGroup readFeeGroup(int depth, const std::string& workId);
  IndirectFeeItem readFeeItem();
  void readTotals(DeclaredTotals& totals, MoneyLine& line);

  Decimal amountOf(const Attributes& attributes, const char* noun, const Decimal& amount) const;
  void note(const Attributes& attributes, const char* noun, const Decimal& declared,
            const Decimal& read);

  GuardedDevice guard_;
  QXmlStreamReader xml_;
  qint64 total_;
  qint64 nextProgress_ = 0;
  const SourceReader::Progress progress_;

  // Where the current tag begins.
  qint64 line_ = 1;
  qint64 column_ = 1;

  SourceKind kind_ = SourceKind::Tender;
  KindRules rules_ = rulesOf(SourceKind::Tender);
  SourceDocument document_;
  MoneyReport report_;
  Money workMoney_;  // of the unit work being read
  std::unordered_set<std::string> ids_;
  std::unordered_set<std::string> accounts_;
  std::unordered_map<std::string, std::size_t> workIndex_;  // into report_.unitWorks
  std::array<bool, 5> defaultTaken_{};

  std::size_t accountCount_ = 0;
  std::size_t sectionCount_ = 0;
  std::size_t billCount_ = 0;
  std::size_t resourceCount_ = 0;
  std::size_t feeCount_ = 0;
};

bool Parser::next() {
  for (;;) {
    line_ = xml_.lineNumber();
    column_ = xml_.columnNumber() + 1;
    const QXmlStreamReader::TokenType token = xml_.readNext();
    guard_.tokenDone();
    if (guard_.delivered() >= nextProgress_) {
      nextProgress_ = guard_.delivered() + ProgressBytes;
      if (progress_ && !progress_(guard_.delivered(), total_)) throw Cancel{};
    }
    switch (token) {
      case QXmlStreamReader::StartElement:
        return true;
      case QXmlStreamReader::EndElement:
        return false;
      case QXmlStreamReader::StartDocument: {
        const QStringRef encoding = xml_.documentEncoding();
        if (!encoding.isEmpty() &&
            encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) != 0) {
          refuse(QStringLiteral("文件声明的编码是 %1：只接受 UTF-8，请用 UTF-8 编码重新导出")
                     .arg(clipped(encoding.toString())));
        }
        break;
      }
      case QXmlStreamReader::Comment:
        break;
      case QXmlStreamReader::Characters:
        if (!xml_.isWhitespace() || xml_.isCDATA()) {
          refuse(QStringLiteral("元素之间有文字“%1”：所有数据都应写在属性里，请去掉")
                     .arg(clipped(xml_.text().toString().simplified())));
        }
        break;
      case QXmlStreamReader::ProcessingInstruction:
        refuse(QStringLiteral("含有处理指令：请去掉"));
      case QXmlStreamReader::DTD:
        refuse(QStringLiteral("含有文档类型声明（DOCTYPE），为安全起见不予读取：请删除该声明"));
      case QXmlStreamReader::EntityReference:
        refuse(QStringLiteral("引用了未定义的实体：请去掉"));
      case QXmlStreamReader::EndDocument:
        refuse(QStringLiteral("文件到此结束，没有内容：请重新导出"));
      case QXmlStreamReader::NoToken:
      case QXmlStreamReader::Invalid:
        refuseXml();
    }
  }
}

bool Parser::nextIs(const ElementName& element) {
  return next() && xml_.qualifiedName() == QLatin1String(element.tag);
}

void Parser::refuseHere(const QString& reason) const {
  throw Refusal{xml_.lineNumber(), xml_.columnNumber() + 1, reason};
}

void Parser::refuseXml() const {
  // Where the guard has cut the stream off, the parser only sees it end early.
  if (guard_.failed() && xml_.error() == QXmlStreamReader::PrematureEndOfDocumentError) {
    const GuardedDevice::Fault& fault = guard_.fault();
    if (fault.line > 0) throw Refusal{fault.line, fault.column, fault.reason};
    refuse(fault.reason);
  }
  refuseHere(xmlReason(xml_));
}

void Parser::refuseElement(const ElementName& parent, const QString& expected) const {
  const QString parentNoun = QString::fromUtf8(parent.noun);
  if (xml_.isEndElement()) {
    refuse(QStringLiteral("%1到此结束，缺少%2：请补全").arg(parentNoun, expected));
  }
  const QString tag = xml_.qualifiedName().toString();
  for (const ElementName& name : Names) {
    if (tag == QLatin1String(name.tag)) {
      refuse(QStringLiteral("%1（%2）不能出现在%3之下的这个位置：此处应为%4")
                 .arg(QString::fromUtf8(name.noun), tag, parentNoun, expected));
    }
  }
  refuse(QStringLiteral("不认识的元素“%1”：%2之下应为%3").arg(clipped(tag), parentNoun, expected));
}

void Parser::leaveEmpty(const ElementName& element) {
  if (next()) {
    refuse(QStringLiteral("%1之下不能再有元素“%2”：请去掉")
               .arg(QString::fromUtf8(element.noun), clipped(xml_.qualifiedName().toString())));
  }
}

void Parser::limit(std::size_t& count, int most, const ElementName& element) {
  if (++count > static_cast<std::size_t>(most)) {
    refuse(QStringLiteral("%1的数量超过 %2 个的上限：请拆分成几个文件")
               .arg(QString::fromUtf8(element.noun))
               .arg(most));
  }
}

void Parser::limitDepth(int depth, int most, const Attributes& attributes) {
  if (depth <= most) return;
  refuse(QStringLiteral("%1的嵌套超过 %2 层：请减少层次").arg(attributes.where()).arg(most));
}

std::string Parser::claimId(Attributes& attributes) {
  std::string id = attributes.id();
  if (!ids_.insert(id).second) {
    attributes.refuse(
        "id", "编号",
        QStringLiteral("“%1”与前面的元素重复：编号在整个文件中必须唯一").arg(text(id)));
  }
  return id;
}

std::string Parser::accountOf(Attributes& attributes) const {
  std::string id = attributes.string("account", "成本科目", OptionalCode);
  if (!id.empty() && accounts_.count(id) == 0) {
    attributes.refuse(
        "account", "成本科目",
        QStringLiteral("“%1”不存在：请在成本科目表中补上，或去掉该引用").arg(clipped(text(id))));
  }
  return id;
}

SourceKind Parser::readRoot() {
  if (!nextIs(Root)) {
    refuseHere(QStringLiteral("根元素是“%1”，不是“costSource”：这不是造价源文件，请另选文件")
                   .arg(clipped(xml_.qualifiedName().toString())));
  }
  // What stands before the root makes no tokens, so its place is where its tag ends.
  line_ = xml_.lineNumber();
  column_ = std::max<qint64>(xml_.columnNumber(), 1);
  Attributes attributes(xml_, Root, line_, column_);
  const std::string version = attributes.string("version", "格式版本", RequiredCode);
  if (version != "1") {
    refuse(QStringLiteral("文件格式版本是“%1”，本程序只能读版本 1：请升级程序，或按版本 1 重新导出")
               .arg(clipped(text(version))));
  }
  const std::string extension = attributes.string("kind", "文件类型", RequiredCode);
  const std::optional<SourceKind> kind = kindOfExtension(extension);
  if (!kind || extensionOf(*kind) != extension) {
    refuse(
        QStringLiteral("文件类型（kind）“%1”不可识别：只能是 ZBQD、TBQD、ZGXJQD、CZB、CTB 或 GCLQD")
            .arg(clipped(text(extension))));
  }
  attributes.finish();
  kind_ = *kind;
  rules_ = rulesOf(kind_);
  return kind_;
}

void Parser::readBody(ReadResult& result) {
  document_.kind = kind_;
  const QString expectWorks = QStringLiteral("工程结构（works）");
  if (!nextIs(Project)) refuseElement(Root, QStringLiteral("工程概况（project）"));
  readFacts(document_.facts);

  bool more = next();
  if (more && xml_.qualifiedName() == QLatin1String(Accounts.tag)) {
    readAccounts();
    more = next();
  }
  if (!more || xml_.qualifiedName() != QLatin1String(Works.tag)) refuseElement(Root, expectWorks);
  readWorks();

  more = next();
  if (more && xml_.qualifiedName() == QLatin1String(Fees.tag)) {
    if (!rules_.fees) {
      refuse(QStringLiteral("%1不携带间接费：请去掉间接费表（indirectFees）").arg(titleOf(kind_)));
    }
    readFees();
    more = next();
  }
  if (rules_.resourcePrices) {
    if (!more || xml_.qualifiedName() != QLatin1String(Totals.tag)) {
      refuseElement(Root, QStringLiteral("合计（totals）"));
    }
    readTotals(document_.declared, report_.project);
    more = next();
  }
  if (more) refuseElement(Root, QStringLiteral("文件结尾"));

  // Reads to the very end: nothing may follow the root.
  while (!xml_.atEnd()) {
    guard_.tokenDone();
    if (xml_.readNext() == QXmlStreamReader::EndDocument) break;
    if (xml_.isProcessingInstruction()) refuseHere(QStringLiteral("含有处理指令：请去掉"));
  }
  if (xml_.hasError()) refuseXml();

  result.document = std::move(document_);
  result.report = std::move(report_);
}

void Parser::readFacts(ProjectFacts& facts) {
  Attributes attributes(xml_, Project, line_, column_);
  facts.id = claimId(attributes);
  facts.name = attributes.string("name", "名称");
  facts.code = attributes.string("code", "工程编号", OptionalCode);
  facts.builder = attributes.string("builder", "建设单位", Optional);
  facts.tenderer =
      attributes.string("tenderer", "投标人", rules_.needsTenderer ? Required : Optional);
  facts.region = attributes.string("region", "地区", Optional);
  facts.pricingBasis = attributes.string("pricingBasis", "计价依据", Optional);
  facts.structure = attributes.string("structure", "结构类型", Optional);
  facts.date = attributes.string("date", "编制日期", OptionalCode);
  if (!facts.date.empty() &&
      (facts.date.size() != 10 || !QDate::fromString(text(facts.date), Qt::ISODate).isValid())) {
    refuse(QStringLiteral("工程概况的编制日期（date）“%1”不是有效日期：请写成 2026-03-15 的样子")
               .arg(clipped(text(facts.date))));
  }
  const std::string method = attributes.string("taxMethod", "计税方法", RequiredCode);
  const std::optional<TaxMethod> taxMethod = taxMethodOfName(method);
  if (!taxMethod) {
    refuse(QStringLiteral("工程概况的计税方法（taxMethod）“%1”不可识别：只能是一般计税或简易计税")
               .arg(clipped(text(method))));
  }
  facts.taxMethod = *taxMethod;
  facts.taxRate = attributes.requiredNumber("taxRate", "税率", ProjectRate);
  facts.buildingArea =
      attributes.number("buildingArea", "建筑面积", Area, false).value_or(Decimal());
  attributes.finish();
  report_.project.id = facts.id;
  report_.project.name = facts.name;
  leaveEmpty(Project);
}

void Parser::readAccounts() {
  Attributes(xml_, Accounts, line_, column_).finish();
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(Account.tag)) {
      refuseElement(Accounts, QStringLiteral("成本科目（account）"));
    }
    document_.accounts.push_back(readAccount(1));
  }
}

CostAccount Parser::readAccount(int depth) {
  Attributes attributes(xml_, Account, line_, column_);
  limitDepth(depth, SourceBounds::AccountDepth, attributes);
  limit(accountCount_, SourceBounds::Accounts, Account);
  CostAccount account;
  account.id = claimId(attributes);
  accounts_.insert(account.id);
  account.code = attributes.string("code", "科目编码", RequiredCode);
  account.name = attributes.string("name", "名称");
  const std::string category = attributes.string("defaultFor", "默认类别", OptionalCode);
  if (!category.empty()) {
    account.defaultFor = categoryOfName(category);
    if (!account.defaultFor) {
      refuse(QStringLiteral(
                 "%1的默认类别（defaultFor）“%2”不可识别：只能是人工、材料、机械、主材或设备")
                 .arg(attributes.where(), clipped(text(category))));
    }
    if (std::exchange(defaultTaken_[static_cast<std::size_t>(*account.defaultFor)], true)) {
      refuse(
          QStringLiteral("%1的默认类别（defaultFor）“%2”已由前面的科目指定：每个类别只能指定一次")
              .arg(attributes.where(), text(category)));
    }
  }
  attributes.finish();
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(Account.tag)) {
      refuseElement(Account, QStringLiteral("成本科目（account）"));
    }
    account.children.push_back(readAccount(depth + 1));
  }
  return account;
}

void Parser::readWorks() {
  Attributes(xml_, Works, line_, column_).finish();
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(Single.tag)) {
      refuseElement(Works, QStringLiteral("单项工程（singleProject）"));
    }
    document_.projects.push_back(readSingle());
  }
  if (document_.projects.empty()) {
    refuseElement(Works, QStringLiteral("单项工程（singleProject）"));
  }
}

SingleProject Parser::readSingle() {
  Attributes attributes(xml_, Single, line_, column_);
  SingleProject project;
  project.id = claimId(attributes);
  project.code = attributes.string("code", "编码", OptionalCode);
  project.name = attributes.string("name", "名称");
  attributes.finish();
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(Work.tag)) {
      refuseElement(Single, QStringLiteral("单位工程（unitWork）"));
    }
    project.unitWorks.push_back(readWork());
  }
  if (project.unitWorks.empty()) refuseElement(Single, QStringLiteral("单位工程（unitWork）"));
  return project;
}

UnitWork Parser::readWork() {
  const QString expected = QStringLiteral("分部（section）或合计（totals）");
  Attributes attributes(xml_, Work, line_, column_);
  std::size_t count = report_.unitWorks.size();
  limit(count, SourceBounds::UnitWorks, Work);
  UnitWork work;
  work.id = claimId(attributes);
  work.code = attributes.string("code", "编码", OptionalCode);
  work.name = attributes.string("name", "名称");
  work.specialty = attributes.string("specialty", "专业", Optional);
  attributes.finish();

  workMoney_ = Money();
  MoneyLine line;
  line.id = work.id;
  line.name = work.name;
  bool totalled = false;
  while (next()) {
    if (xml_.qualifiedName() == QLatin1String(Part.tag) && !totalled) {
      work.sections.push_back(readSection(1));
    } else if (xml_.qualifiedName() == QLatin1String(Totals.tag) && !totalled) {
      readTotals(work.declared, line);
      totalled = true;
    } else {
      refuseElement(Work, totalled ? QStringLiteral("结束标记") : expected);
    }
  }
  if (!totalled && rules_.resourcePrices) refuseElement(Work, QStringLiteral("合计（totals）"));
  line.bills.read = workMoney_.bills;
  line.resources.read = workMoney_.resources;
  report_.project.bills.read += workMoney_.bills;
  report_.project.resources.read += workMoney_.resources;
  workIndex_.emplace(work.id, report_.unitWorks.size());
  report_.unitWorks.push_back(std::move(line));
  return work;
}

Section Parser::readSection(int depth) {
  Attributes attributes(xml_, Part, line_, column_);
  limitDepth(depth, SourceBounds::SectionDepth, attributes);
  limit(sectionCount_, SourceBounds::Sections, Part);
  Section section;
  section.id = claimId(attributes);
  section.code = attributes.string("code", "编码", OptionalCode);
  section.name = attributes.string("name", "名称");
  attributes.finish();
  while (next()) {
    const bool isSection = xml_.qualifiedName() == QLatin1String(Part.tag);
    if (!isSection && xml_.qualifiedName() != QLatin1String(BillRow.tag)) {
      refuseElement(Part, QStringLiteral("分部（section）或清单（bill）"));
    }
    if (isSection ? !section.bills.empty() : !section.sections.empty()) {
      refuse(QStringLiteral("%1既有子分部又有清单：请把清单都放进子分部").arg(attributes.where()));
    }
    if (isSection) {
      section.sections.push_back(readSection(depth + 1));
    } else {
      section.bills.push_back(readBill());
    }
  }
  return section;
}

Decimal Parser::amountOf(const Attributes& attributes, const char* noun,
                         const Decimal& amount) const {
  static const Decimal most = *Decimal::parse(Amount.limit);
  if (amount >= most) {
    refuse(QStringLiteral("%1的%2 %3 过大：必须小于 %4，请检查数量和单价")
               .arg(attributes.where(), QString::fromUtf8(noun), money(amount),
                    QLatin1String(Amount.limit)));
  }
  return amount;
}

void Parser::note(const Attributes& attributes, const char* noun, const Decimal& declared,
                  const Decimal& read) {
  if (declared == read) return;
  if (++report_.differenceCount <= MoneyReport::ListedDifferences) {
    report_.differences.push_back(
        {QStringLiteral("%1的%2").arg(attributes.where(), QString::fromUtf8(noun)), declared, read,
         line_, column_});
  }
}

Bill Parser::readBill() {
  Attributes attributes(xml_, BillRow, line_, column_);
  limit(billCount_, SourceBounds::Bills, BillRow);
  Bill bill;
  bill.id = claimId(attributes);
  bill.code = attributes.string("code", "项目编码", RequiredCode);
  if (bill.code.size() != 12 || !std::all_of(bill.code.begin(), bill.code.end(),
                                             [](char c) { return c >= '0' && c <= '9'; })) {
    refuse(QStringLiteral("%1的项目编码（code）不是 12 位数字：请按清单规范编码")
               .arg(attributes.where()));
  }
  bill.name = attributes.string("name", "名称");
  bill.features =
      attributes.string("features", "项目特征", {false, SourceBounds::FeatureCharacters, true});
  bill.unit = attributes.string("unit", "计量单位", {true, SourceBounds::UnitCharacters});
  bill.accountId = accountOf(attributes);
  bill.quantity = attributes.requiredNumber("quantity", "工程量", Quantity);
  if (rules_.billPrices) {
    bill.unitPrice = attributes.requiredNumber("unitPrice", "综合单价", UnitPrice);
    bill.declaredAmount = attributes.requiredNumber("amount", "合价", Amount);
  } else {
    attributes.forbid("unitPrice", "综合单价");
    attributes.forbid("amount", "合价");
  }
  attributes.finish();
  if (bill.unitPrice) {
    const Decimal amount = amountOf(attributes, "合价", billAmount(bill.quantity, *bill.unitPrice));
    note(attributes, "合价", *bill.declaredAmount, amount);
    workMoney_.bills += amount;
  }
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(ResourceRow.tag)) {
      refuseElement(BillRow, QStringLiteral("人材机（resource）"));
    }
    bill.resources.push_back(readResource(bill));
  }
  return bill;
}

Resource Parser::readResource(const Bill& bill) {
  Attributes attributes(xml_, ResourceRow, line_, column_);
  limit(resourceCount_, SourceBounds::Resources, ResourceRow);
  Resource resource;
  resource.id = claimId(attributes);
  const std::string category = attributes.string("category", "类别", RequiredCode);
  const std::optional<ResourceCategory> known = categoryOfName(category);
  if (!known) {
    refuse(QStringLiteral("%1的类别（category）“%2”不可识别：只能是人工、材料、机械、主材或设备")
               .arg(attributes.where(), clipped(text(category))));
  }
  resource.category = *known;
  resource.code = attributes.string("code", "编码", RequiredCode);
  resource.name = attributes.string("name", "名称");
  resource.spec = attributes.string("spec", "规格型号", Optional);
  resource.unit = attributes.string("unit", "单位", {true, SourceBounds::UnitCharacters});
  resource.accountId = accountOf(attributes);
  resource.content = attributes.requiredNumber("content", "含量", Content);
  if (rules_.resourcePrices) {
    resource.price = attributes.requiredNumber("price", "不含税单价", ResourcePrice);
  } else {
    attributes.forbid("price", "不含税单价");
  }
  resource.taxRate = attributes.requiredNumber("taxRate", "税率", Rate);
  resource.ownerSupplied = attributes.flag("ownerSupplied", "甲供标记");
  resource.provisional = attributes.flag("provisional", "暂估标记");
  resource.priceAdjustable = attributes.flag("priceAdjustable", "可调价标记");
  attributes.finish();
  workMoney_.resources +=
      amountOf(attributes, "合价", resourceAmount(bill.quantity, resource.content, resource.price));
  leaveEmpty(ResourceRow);
  return resource;
}

void Parser::readFees() {
  Attributes(xml_, Fees, line_, column_).finish();
  while (next()) {
    if (xml_.qualifiedName() != QLatin1String(FeeGroup.tag)) {
      refuseElement(Fees, QStringLiteral("间接费分组（group）"));
    }
    document_.feeGroups.push_back(readFeeGroup(1, {}));
  }
}

IndirectFeeGroup Parser::readFeeGroup(int depth, const std::string& workId) {
  Attributes attributes(xml_, FeeGroup, line_, column_);
  limitDepth(depth, SourceBounds::FeeGroupDepth, attributes);
  limit(feeCount_, SourceBounds::FeeItems, FeeGroup);
  IndirectFeeGroup group;
  group.id = claimId(attributes);
  group.code = attributes.string("code", "编码", OptionalCode);
  group.name = attributes.string("name", "名称");
  if (depth == 1) {
    group.unitWorkId = attributes.string("unitWork", "单位工程", OptionalCode);
    if (!group.unitWorkId.empty() && workIndex_.count(group.unitWorkId) == 0) {
      refuse(QStringLiteral(
                 "%1的单位工程（unitWork）“%2”不存在：请改为文件中某个单位工程的编号，或去掉该引用")
                 .arg(attributes.where(), clipped(text(group.unitWorkId))));
    }
  } else {
    attributes.forbid("unitWork", "单位工程");
  }
  attributes.finish();
  const std::string& owner = depth == 1 ? group.unitWorkId : workId;
  while (next()) {
    const bool isGroup = xml_.qualifiedName() == QLatin1String(FeeGroup.tag);
    if (!isGroup && xml_.qualifiedName() != QLatin1String(FeeItem.tag)) {
      refuseElement(FeeGroup, QStringLiteral("间接费分组（group）或间接费（item）"));
    }
    if (isGroup ? !group.items.empty() : !group.groups.empty()) {
      refuse(
          QStringLiteral("%1既有子分组又有间接费：请把间接费都放进子分组").arg(attributes.where()));
    }
    if (isGroup) {
      group.groups.push_back(readFeeGroup(depth + 1, owner));
      continue;
    }
    group.items.push_back(readFeeItem());
    const IndirectFeeItem& item = group.items.back();
    const Decimal amount = item.base ? feeAmount(*item.base, *item.rate) : item.declaredAmount;
    if (!owner.empty()) report_.unitWorks[workIndex_.at(owner)].fees.read += amount;
    report_.project.fees.read += amount;
  }
  return group;
}

IndirectFeeItem Parser::readFeeItem() {
  Attributes attributes(xml_, FeeItem, line_, column_);
  limit(feeCount_, SourceBounds::FeeItems, FeeItem);
  IndirectFeeItem item;
  item.id = claimId(attributes);
  item.code = attributes.string("code", "编码", OptionalCode);
  item.name = attributes.string("name", "名称");
  item.basis = attributes.string("basis", "计算基础", Optional);
  item.accountId = accountOf(attributes);
  item.base = attributes.number("base", "基数", Amount, false);
  item.rate = attributes.number("rate", "费率", Rate, false);
  item.declaredAmount = attributes.requiredNumber("amount", "金额", Amount);
  attributes.finish();
  if (item.base.has_value() != item.rate.has_value()) {
    refuse(QStringLiteral("%1只有%2：基数（base）和费率（rate）必须同时给出或同时省略")
               .arg(attributes.where(),
                    item.base ? QStringLiteral("基数（base）") : QStringLiteral("费率（rate）")));
  }
  if (item.base) {
    const Decimal amount = amountOf(attributes, "金额", feeAmount(*item.base, *item.rate));
    note(attributes, "金额", item.declaredAmount, amount);
  }
  leaveEmpty(FeeItem);
  return item;
}

void Parser::readTotals(DeclaredTotals& totals, MoneyLine& line) {
  if (!rules_.resourcePrices) {
    refuse(QStringLiteral("%1不携带金额：请去掉合计（totals）").arg(titleOf(kind_)));
  }
  line.line = line_;
  line.column = column_;
  Attributes attributes(xml_, Totals, line_, column_);
  if (rules_.billPrices) {
    totals.bills = attributes.requiredNumber("bills", "清单合计", Sum);
  } else {
    attributes.forbid("bills", "清单合计");
  }
  totals.resources = attributes.requiredNumber("resources", "人材机合计", Sum);
  totals.fees = attributes.requiredNumber("fees", "间接费合计", Sum);
  attributes.finish();
  line.bills.declared = totals.bills;
  line.resources.declared = totals.resources;
  line.fees.declared = totals.fees;
  leaveEmpty(Totals);
}

ReadResult refused(const QString& reason) {
  ReadResult result;
  result.reason = reason;
  return result;
}

/// What can be said without looking into the file: empty, or why it cannot be read.
QString pathFault(const QString& path) {
  const QFileInfo info(path);
  if (path.trimmed().isEmpty())
    return QStringLiteral("没有选择文件：请先选择一个招投标文件或造价标准数据文件");
  if (!info.exists()) {
    return QStringLiteral("文件“%1”不存在：请检查路径，或重新选择文件").arg(path);
  }
  if (info.isDir()) return QStringLiteral("“%1”是文件夹，不是文件：请选择其中的文件").arg(path);
  if (!info.isFile()) return QStringLiteral("“%1”不是普通文件：请另选文件").arg(path);
  if (!kindOfExtension(info.suffix().toStdString())) {
    return QStringLiteral(
               "文件“%1”的扩展名“%2”不可识别：只能是 ZBQD、TBQD、ZGXJQD、CZB、CTB 或 GCLQD")
        .arg(info.fileName(), info.suffix());
  }
  if (!info.isReadable()) {
    return QStringLiteral("文件“%1”没有读取权限：请检查文件权限后重试").arg(info.fileName());
  }
  if (info.size() == 0) return QStringLiteral("文件“%1”是空的：请重新导出").arg(info.fileName());
  if (info.size() > SourceBounds::FileBytes) {
    return QStringLiteral("文件超过 %1 MB 的上限：请拆分成几个文件")
        .arg(SourceBounds::FileBytes >> 20);
  }
  return {};
}

QString openFault(const QFile& file) {
  return QStringLiteral("文件“%1”无法打开（技术信息：%2）：请关闭占用它的程序或检查权限后重试")
      .arg(QFileInfo(file).fileName(), file.errorString());
}

QString kindFault(const QString& path, SourceKind kind) {
  const QString suffix = QFileInfo(path).suffix();
  if (kindOfExtension(suffix.toStdString()) == kind) return {};
  return QStringLiteral("文件内容是%1，与扩展名“.%2”不符：请把扩展名改为 .%3，或另选文件")
      .arg(titleOf(kind), suffix, text(extensionOf(kind)));
}

ReadResult readDevice(QIODevice& device, const QString& path, qint64 total,
                      const SourceReader::Progress& progress, bool allowMoneyDifference) {
  ReadResult result;
  Parser parser(device, total, progress);
  try {
    const SourceKind kind = parser.readRoot();
    if (!path.isEmpty()) {
      const QString fault = kindFault(path, kind);
      if (!fault.isEmpty()) parser.refuse(fault);
    }
    parser.readBody(result);
  } catch (const Refusal& refusal) {
    result.line = refusal.line;
    result.column = refusal.column;
    result.reason = refusal.reason;
    return result;
  } catch (const Cancel&) {
    result.status = ReadResult::Status::Cancelled;
    result.reason = QStringLiteral("已取消读取");
    return result;
  } catch (const std::overflow_error&) {
    return refused(QStringLiteral("金额超出可计算的范围：请检查数量和单价"));
  }
  if (!result.report.agrees() && !allowMoneyDifference) {
    result.status = ReadResult::Status::MoneyDiffers;
    result.document = SourceDocument();
    const MoneyReport::Explanation first = result.report.explanation();
    result.line = first.line;
    result.column = first.column;
    result.reason = first.reason;
    return result;
  }
  result.status = ReadResult::Status::Ok;
  return result;
}

}  // namespace

QString ReadResult::message() const {
  if (line <= 0) return reason;
  return QStringLiteral("第 %1 行第 %2 列：%3").arg(line).arg(column).arg(reason);
}

ReadResult SourceReader::read(const QString& path) const {
  const QString fault = pathFault(path);
  if (!fault.isEmpty()) return refused(fault);
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return refused(openFault(file));
  return readDevice(file, path, file.size(), progress_, allowMoneyDifference_);
}

ReadResult SourceReader::read(QIODevice& device) const {
  return readDevice(device, {}, device.isSequential() ? 0 : device.size(), progress_,
                    allowMoneyDifference_);
}

PeekResult peekKind(const QString& path) {
  const QString fault = pathFault(path);
  if (!fault.isEmpty()) return {{}, fault};
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {{}, openFault(file)};
  Parser parser(file, file.size(), {});
  try {
    const SourceKind kind = parser.readRoot();
    const QString mismatch = kindFault(path, kind);
    if (!mismatch.isEmpty()) return {{}, mismatch};
    return {kind, {}};
  } catch (const Refusal& refusal) {
    return {{},
            QStringLiteral("文件“%1”不是有效的造价源文件（第 %2 行第 %3 列：%4）")
                .arg(QFileInfo(path).fileName())
                .arg(refusal.line)
                .arg(refusal.column)
                .arg(refusal.reason)};
  }
}

}  // namespace exchange
