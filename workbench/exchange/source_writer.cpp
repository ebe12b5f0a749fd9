#include "workbench/exchange/source_writer.h"

#include <QFileInfo>
#include <QSaveFile>

namespace exchange {
namespace {

using costing::Decimal;

QString toQt(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

}  // namespace

SourceWriter::SourceWriter(QIODevice& device, SourceKind kind)
    : xml_(&device), kind_(kind), rules_(rulesOf(kind)) {
  xml_.setCodec("UTF-8");
  xml_.setAutoFormatting(true);
  xml_.setAutoFormattingIndent(1);
}

void SourceWriter::text(const char* name, const std::string& value) {
  xml_.writeAttribute(QLatin1String(name), toQt(value));
}

void SourceWriter::optionalText(const char* name, const std::string& value) {
  if (!value.empty()) text(name, value);
}

void SourceWriter::heading(const std::string& id, const std::string& code,
                           const std::string& name) {
  text("id", id);
  optionalText("code", code);
  text("name", name);
}

void SourceWriter::number(const char* name, const Decimal& value) {
  text(name, value.toString());
}

void SourceWriter::money(const char* name, const Decimal& value) {
  text(name, value.toString(2));
}

void SourceWriter::flag(const char* name, bool value) {
  if (value) text(name, "true");
}

void SourceWriter::begin(const ProjectFacts& facts) {
  xml_.writeStartDocument();
  xml_.writeStartElement(QStringLiteral("costSource"));
  text("version", "1");
  text("kind", extensionOf(kind_));
  xml_.writeEmptyElement(QStringLiteral("project"));
  text("id", facts.id);
  text("name", facts.name);
  optionalText("code", facts.code);
  optionalText("builder", facts.builder);
  optionalText("tenderer", facts.tenderer);
  optionalText("region", facts.region);
  optionalText("date", facts.date);
  optionalText("pricingBasis", facts.pricingBasis);
  optionalText("structure", facts.structure);
  text("taxMethod", nameOf(facts.taxMethod));
  number("taxRate", facts.taxRate);
  if (!facts.buildingArea.isZero()) number("buildingArea", facts.buildingArea);
}

void SourceWriter::writeAccounts(const std::vector<CostAccount>& accounts) {
  if (accounts.empty()) return;
  xml_.writeStartElement(QStringLiteral("costAccounts"));
  for (const CostAccount& account : accounts) writeAccount(account);
  xml_.writeEndElement();
}

void SourceWriter::writeAccount(const CostAccount& account) {
  const QString tag = QStringLiteral("account");
  account.children.empty() ? xml_.writeEmptyElement(tag) : xml_.writeStartElement(tag);
  text("id", account.id);
  text("code", account.code);
  text("name", account.name);
  if (account.defaultFor) text("defaultFor", nameOf(*account.defaultFor));
  if (account.children.empty()) return;
  for (const CostAccount& child : account.children) writeAccount(child);
  xml_.writeEndElement();
}

void SourceWriter::beginSingleProject(const SingleProject& project) {
  if (state_ == State::BeforeWorks) {
    xml_.writeStartElement(QStringLiteral("works"));
    state_ = State::InWorks;
  }
  xml_.writeStartElement(QStringLiteral("singleProject"));
  heading(project.id, project.code, project.name);
}

void SourceWriter::beginUnitWork(const UnitWork& work) {
  xml_.writeStartElement(QStringLiteral("unitWork"));
  heading(work.id, work.code, work.name);
  optionalText("specialty", work.specialty);
}

void SourceWriter::beginSection(const Section& section) {
  xml_.writeStartElement(QStringLiteral("section"));
  heading(section.id, section.code, section.name);
}

void SourceWriter::writeBill(const Bill& bill) {
  const QString tag = QStringLiteral("bill");
  bill.resources.empty() ? xml_.writeEmptyElement(tag) : xml_.writeStartElement(tag);
  text("id", bill.id);
  text("code", bill.code);
  text("name", bill.name);
  optionalText("features", bill.features);
  text("unit", bill.unit);
  number("quantity", bill.quantity);
  if (rules_.billPrices) {
    money("unitPrice", bill.unitPrice.value_or(Decimal()));
    money("amount", bill.declaredAmount.value_or(Decimal()));
  }
  optionalText("account", bill.accountId);
  if (bill.resources.empty()) return;
  for (const Resource& resource : bill.resources) {
    xml_.writeEmptyElement(QStringLiteral("resource"));
    text("id", resource.id);
    text("category", nameOf(resource.category));
    text("code", resource.code);
    text("name", resource.name);
    optionalText("spec", resource.spec);
    text("unit", resource.unit);
    number("content", resource.content);
    if (rules_.resourcePrices) number("price", resource.price);
    number("taxRate", resource.taxRate);
    flag("ownerSupplied", resource.ownerSupplied);
    flag("provisional", resource.provisional);
    flag("priceAdjustable", resource.priceAdjustable);
    optionalText("account", resource.accountId);
  }
  xml_.writeEndElement();
}

void SourceWriter::endSection() {
  xml_.writeEndElement();
}

void SourceWriter::endUnitWork(const DeclaredTotals& declared) {
  writeTotals(declared);
  xml_.writeEndElement();
}

void SourceWriter::endSingleProject() {
  xml_.writeEndElement();
}

void SourceWriter::closeWorks() {
  if (state_ == State::InWorks) xml_.writeEndElement();
  state_ = State::AfterWorks;
}

void SourceWriter::writeFees(const std::vector<IndirectFeeGroup>& groups) {
  closeWorks();
  if (groups.empty() || !rules_.fees) return;
  xml_.writeStartElement(QStringLiteral("indirectFees"));
  for (const IndirectFeeGroup& group : groups) writeFeeGroup(group);
  xml_.writeEndElement();
}

void SourceWriter::writeFeeGroup(const IndirectFeeGroup& group) {
  xml_.writeStartElement(QStringLiteral("group"));
  heading(group.id, group.code, group.name);
  optionalText("unitWork", group.unitWorkId);
  for (const IndirectFeeGroup& child : group.groups) writeFeeGroup(child);
  for (const IndirectFeeItem& item : group.items) {
    xml_.writeEmptyElement(QStringLiteral("item"));
    heading(item.id, item.code, item.name);
    optionalText("basis", item.basis);
    if (item.base) money("base", *item.base);
    if (item.rate) number("rate", *item.rate);
    money("amount", item.declaredAmount);
    optionalText("account", item.accountId);
  }
  xml_.writeEndElement();
}

void SourceWriter::writeTotals(const DeclaredTotals& declared) {
  if (!rules_.resourcePrices) return;
  xml_.writeEmptyElement(QStringLiteral("totals"));
  if (rules_.billPrices) money("bills", declared.bills.value_or(Decimal()));
  money("resources", declared.resources.value_or(Decimal()));
  money("fees", declared.fees.value_or(Decimal()));
}

bool SourceWriter::end(const DeclaredTotals& declared) {
  closeWorks();
  writeTotals(declared);
  xml_.writeEndDocument();
  return !xml_.hasError();
}

void SourceWriter::writeSection(const Section& section) {
  beginSection(section);
  for (const Section& child : section.sections) writeSection(child);
  for (const Bill& bill : section.bills) writeBill(bill);
  endSection();
}

bool SourceWriter::write(const SourceDocument& document, QIODevice& device) {
  SourceWriter writer(device, document.kind);
  writer.begin(document.facts);
  writer.writeAccounts(document.accounts);
  for (const SingleProject& project : document.projects) {
    writer.beginSingleProject(project);
    for (const UnitWork& work : project.unitWorks) {
      writer.beginUnitWork(work);
      for (const Section& section : work.sections) writer.writeSection(section);
      writer.endUnitWork(work.declared);
    }
    writer.endSingleProject();
  }
  writer.writeFees(document.feeGroups);
  return writer.end(document.declared);
}

QString SourceWriter::writeFault(const QFileDevice& file) {
  return QStringLiteral("文件“%1”无法写入（技术信息：%2）：请检查文件夹是否存在、磁盘空间和权限")
      .arg(file.fileName(), file.errorString());
}

QString SourceWriter::writeFile(const SourceDocument& document, const QString& path) {
  const QFileInfo info(path);
  if (kindOfExtension(info.suffix().toStdString()) != document.kind) {
    return QStringLiteral("文件“%1”的扩展名应为 .%2：请改用该扩展名")
        .arg(info.fileName(), toQt(extensionOf(document.kind)));
  }
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !write(document, file) || !file.commit()) {
    return writeFault(file);
  }
  return {};
}

}  // namespace exchange
