#pragma once

#include <QByteArray>
#include <QIODevice>

namespace exchange {

/// Stands between a file and the XML parser and lets through only what a source file may hold:
/// valid UTF-8 without control characters or document type declarations, in bounded tokens. At
/// the first fault it ends the stream and keeps the reason.
class GuardedDevice : public QIODevice {
 public:
  struct Fault {
    QString reason;
    qint64 line = 0;
    qint64 column = 0;
  };

  GuardedDevice(QIODevice& source, qint64 fileLimit, qint64 tokenLimit);

  bool isSequential() const override { return true; }
  /// The parser has finished a token: the next one may be as long again.
  void tokenDone() { tokenStart_ = delivered_; }
  qint64 delivered() const { return delivered_; }
  /// Everything before the fault has been delivered.
  bool failed() const { return !fault_.reason.isEmpty() && position_ == validEnd_; }
  const Fault& fault() const { return fault_; }

 protected:
  qint64 readData(char* data, qint64 size) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  bool fill();
  void check();
  bool accept(unsigned char byte);
  void failHere(const QString& reason);

  QIODevice& source_;
  const qint64 fileLimit_;
  const qint64 tokenLimit_;
  QByteArray buffer_;
  int position_ = 0;  // in buffer_
  int validEnd_ = 0;  // how far buffer_ has been checked
  bool atStart_ = true;
  qint64 delivered_ = 0;
  qint64 tokenStart_ = 0;
  Fault fault_;

  qint64 line_ = 1;
  qint64 column_ = 0;
  int continuation_ = 0;        // bytes still to come of the current character
  unsigned char lower_ = 0x80;  // bounds of the next continuation byte
  unsigned char upper_ = 0xBF;
  unsigned int character_ = 0;
  int doctype_ = 0;  // characters of "<!DOCTYPE" seen
};

}  // namespace exchange
