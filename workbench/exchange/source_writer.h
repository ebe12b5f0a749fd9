#pragma once

#include <QString>
#include <QXmlStreamWriter>
#include <vector>

#include "workbench/exchange/source_document.h"

class QFileDevice;
class QIODevice;

namespace exchange {

/// Writes a source file piece by piece, so that a file of any size needs no memory for the whole.
/// The calls follow the order of the file: begin, accounts, single projects with their unit works,
/// sections and bills, fees, end. What the kind does not carry is left out. Nothing is checked:
/// SourceReader is the judge.
class SourceWriter {
 public:
  SourceWriter(QIODevice& device, SourceKind kind);

  void begin(const ProjectFacts& facts);
  void writeAccounts(const std::vector<CostAccount>& accounts);
  void beginSingleProject(const SingleProject& project);  ///< takes id, code and name only
  void beginUnitWork(const UnitWork& work);               ///< takes no sections, no totals
  void beginSection(const Section& section);              ///< takes id, code and name only
  void writeBill(const Bill& bill);                       ///< with its resource items
  void endSection();
  void endUnitWork(const DeclaredTotals& declared);
  void endSingleProject();
  void writeFees(const std::vector<IndirectFeeGroup>& groups);
  /// False when the device has refused any of it.
  bool end(const DeclaredTotals& declared);

  bool hasFailed() const { return xml_.hasError(); }

  /// The whole document; false when the device refuses.
  static bool write(const SourceDocument& document, QIODevice& device);
  /// Atomically: the file is whole, or as it was before. Answers a Chinese reason, empty when
  /// written. The extension must be that of the document's kind.
  static QString writeFile(const SourceDocument& document, const QString& path);
  /// What to tell the user when a source file could not be written (Chinese).
  static QString writeFault(const QFileDevice& file);

 private:
  enum class State { BeforeWorks, InWorks, AfterWorks };

  void text(const char* name, const std::string& value);
  void optionalText(const char* name, const std::string& value);
  /// What most elements begin with; an empty code is left out.
  void heading(const std::string& id, const std::string& code, const std::string& name);
  void number(const char* name, const costing::Decimal& value);
  void money(const char* name, const costing::Decimal& value);
  void flag(const char* name, bool value);
  void writeAccount(const CostAccount& account);
  void writeSection(const Section& section);
  void writeFeeGroup(const IndirectFeeGroup& group);
  void writeTotals(const DeclaredTotals& declared);
  void closeWorks();

  QXmlStreamWriter xml_;
  SourceKind kind_;
  KindRules rules_;
  State state_ = State::BeforeWorks;
};

}  // namespace exchange
