#include "workbench/exchange/guarded_device.h"

#include <algorithm>
#include <cstring>

namespace exchange {
namespace {

constexpr char Doctype[] = "<!DOCTYPE";
constexpr int DoctypeLength = sizeof(Doctype) - 1;
constexpr qint64 ChunkBytes = 65536;

QString wrongEncoding() {
  return QStringLiteral("文件不是 UTF-8 编码：请用 UTF-8 编码重新导出");
}

}  // namespace

GuardedDevice::GuardedDevice(QIODevice& source, qint64 fileLimit, qint64 tokenLimit)
    : source_(source), fileLimit_(fileLimit), tokenLimit_(tokenLimit) {
  open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 GuardedDevice::readData(char* data, qint64 size) {
  if (delivered_ - tokenStart_ > tokenLimit_ && fault_.reason.isEmpty()) {
    validEnd_ = position_;
    fault_ = {QStringLiteral("一个标记的长度超过 %1 KB：请检查文件是否损坏，或缩短过长的文字")
                  .arg(tokenLimit_ / 1024),
              0, 0};
  }
  if (position_ == validEnd_ && !fill()) return 0;
  const qint64 count = std::min<qint64>(size, validEnd_ - position_);
  std::memcpy(data, buffer_.constData() + position_, static_cast<std::size_t>(count));
  position_ += static_cast<int>(count);
  delivered_ += count;
  return count;
}

bool GuardedDevice::fill() {
  if (!fault_.reason.isEmpty()) return false;
  buffer_.resize(ChunkBytes);
  qint64 count = source_.read(buffer_.data(), buffer_.size());
  if (count < 0) {
    fault_ = {QStringLiteral("读取文件失败（技术信息：%1）：请检查磁盘或网络后重试")
                  .arg(source_.errorString()),
              0, 0};
    return false;
  }
  position_ = validEnd_ = 0;
  buffer_.resize(static_cast<int>(count));
  if (count == 0) {
    if (continuation_ > 0) failHere(wrongEncoding());
    return false;
  }
  if (delivered_ + count > fileLimit_) {
    fault_ = {QStringLiteral("文件超过 %1 MB 的上限：请拆分成几个文件").arg(fileLimit_ >> 20), 0,
              0};
    return false;
  }
  if (atStart_) {
    atStart_ = false;
    if (buffer_.startsWith("\xFE\xFF") || buffer_.startsWith("\xFF\xFE")) {
      column_ = 1;
      failHere(QStringLiteral("文件是 UTF-16 编码：请用 UTF-8 编码重新导出"));
      return false;
    }
  }
  check();
  return validEnd_ > 0;
}

void GuardedDevice::check() {
  while (validEnd_ < buffer_.size()) {
    if (!accept(static_cast<unsigned char>(buffer_.at(validEnd_)))) return;
    ++validEnd_;
  }
}

bool GuardedDevice::accept(unsigned char byte) {
  if (continuation_ > 0) {
    if (byte < lower_ || byte > upper_) {
      failHere(wrongEncoding());
      return false;
    }
    lower_ = 0x80;
    upper_ = 0xBF;
    character_ = (character_ << 6) | (byte & 0x3FU);
    if (--continuation_ == 0 && (character_ == 0xFFFE || character_ == 0xFFFF)) {
      failHere(QStringLiteral("含有不允许的字符 U+%1：请删除该字符").arg(character_, 4, 16));
      return false;
    }
    return true;
  }

  if (byte == 0x0A) {
    ++line_;
    column_ = 0;
  } else {
    ++column_;
  }
  if (byte < 0x80) {
    if (byte < 0x20 && byte != 0x09 && byte != 0x0A && byte != 0x0D) {
      failHere(QStringLiteral("含有不允许的控制字符 U+%1：请删除该字符，或检查文件是否损坏")
                   .arg(static_cast<uint>(byte), 4, 16, QLatin1Char('0')));
      return false;
    }
    const char letter = static_cast<char>(byte);
    doctype_ = letter == Doctype[doctype_] ? doctype_ + 1 : (letter == Doctype[0] ? 1 : 0);
    if (doctype_ == DoctypeLength) {
      column_ -= DoctypeLength - 1;
      failHere(QStringLiteral("含有文档类型声明（DOCTYPE），为安全起见不予读取：请删除该声明"));
      return false;
    }
    return true;
  }

  doctype_ = 0;
  if (byte >= 0xC2 && byte <= 0xDF) {
    continuation_ = 1;
    character_ = byte & 0x1FU;
  } else if (byte >= 0xE0 && byte <= 0xEF) {
    continuation_ = 2;
    character_ = byte & 0x0FU;
    if (byte == 0xE0) lower_ = 0xA0;  // no overlong forms
    if (byte == 0xED) upper_ = 0x9F;  // no surrogates
  } else if (byte >= 0xF0 && byte <= 0xF4) {
    continuation_ = 3;
    character_ = byte & 0x07U;
    if (byte == 0xF0) lower_ = 0x90;
    if (byte == 0xF4) upper_ = 0x8F;
  } else {
    failHere(wrongEncoding());
    return false;
  }
  return true;
}

void GuardedDevice::failHere(const QString& reason) {
  fault_ = {reason, line_, std::max<qint64>(column_, 1)};
}

}  // namespace exchange
