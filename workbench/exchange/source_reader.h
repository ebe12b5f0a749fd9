#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "workbench/exchange/money_report.h"
#include "workbench/exchange/source_document.h"

class QIODevice;

namespace exchange {

/// What a source file may hold at most; beyond it the file is refused.
struct SourceBounds {
  static constexpr qint64 FileBytes = qint64(2) << 30;
  static constexpr qint64 TokenBytes = 262144;  ///< one tag, comment or stretch of text
  static constexpr int SectionDepth = 8;
  static constexpr int AccountDepth = 8;
  static constexpr int FeeGroupDepth = 6;
  static constexpr int UnitWorks = 10000;
  static constexpr int Sections = 500000;
  static constexpr int Accounts = 20000;
  static constexpr int Bills = 1000000;
  static constexpr int Resources = 5000000;
  static constexpr int FeeItems = 100000;
  static constexpr int FeatureCharacters = 4000;
  static constexpr int TextCharacters = 500;
  static constexpr int CodeCharacters = 64;
  static constexpr int UnitCharacters = 20;
};

struct ReadResult {
  enum class Status {
    Ok,
    Refused,       ///< the file cannot be used
    MoneyDiffers,  ///< well formed, but the money declared is not the money read
    Cancelled
  };

  Status status = Status::Refused;
  SourceDocument document;  ///< only when Ok
  MoneyReport report;       ///< when Ok or MoneyDiffers
  qint64 line = 0;          ///< of the fault, from 1; 0 when the fault has no place in the text
  qint64 column = 0;
  QString reason;  ///< Chinese: what is wrong, where, and what to do about it

  bool ok() const { return status == Status::Ok; }
  /// "第 12 行第 5 列：reason", or only the reason when it has no place.
  QString message() const;
};

/// Reads a source file as a stream. Nothing is corrected silently: a file is taken whole or
/// refused. It does not resolve entities, and refuses every document type declaration.
class SourceReader {
 public:
  /// Bytes read, bytes in all (0 when unknown); false cancels.
  using Progress = std::function<bool(qint64 done, qint64 total)>;

  void setProgress(Progress progress) { progress_ = std::move(progress); }
  /// Takes files whose declared money is not the money read; the report then says both.
  void setAllowMoneyDifference(bool allow) { allowMoneyDifference_ = allow; }

  /// The extension must be that of the file's kind.
  ReadResult read(const QString& path) const;
  /// `device` is open for reading. Any kind is taken.
  ReadResult read(QIODevice& device) const;

 private:
  Progress progress_;
  bool allowMoneyDifference_ = false;
};

struct PeekResult {
  std::optional<SourceKind> kind;
  QString reason;  ///< Chinese; empty when the kind is there
};

/// Looks only at the name and the root element: is this a source file, and of the kind that its
/// extension says?
PeekResult peekKind(const QString& path);

}  // namespace exchange
