#include <type_traits>

#include "host/Host.h"
#include "tcharvfile/TCharVFile.h"

namespace {

/// The digits of a number in units, at 32 or 64 bits by its width.
struct NumberText {
  template <typename Value>
  NumberText(Value value, std::int32_t radix) {
    if constexpr (std::is_signed_v<Value> && sizeof(Value) <= 4) {
      host::_itow_s(value, units, std::size(units), radix);
    } else if constexpr (std::is_signed_v<Value>) {
      host::_i64tow_s(value, units, std::size(units), radix);
    } else if constexpr (sizeof(Value) <= 4) {
      host::_ultow_s(value, units, std::size(units), radix);
    } else {
      host::_ui64tow_s(value, units, std::size(units), radix);
    }
  }

  TChar units[65];
};

}  // namespace

TCharVFile& TCharVFile::operator<<(TChar unit) {
  InsertTChar(unit);
  return *this;
}

TCharVFile& TCharVFile::operator<<(const TChar* text) {
  InsertTStr(text);
  return *this;
}

TCharVFile& TCharVFile::operator<<(const TString& text) {
  InsertTStr(text);
  return *this;
}

TCharVFile& TCharVFile::operator<<(const TCharVFile& source) {
  ReplaceTxt(pos, 0, source, 0, MaxLen);
  return *this;
}

TCharVFile& TCharVFile::operator<<(short value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(unsigned short value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(int value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(unsigned int value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(long value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(unsigned long value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(long long value) { return *this << NumberText(value, radix).units; }
TCharVFile& TCharVFile::operator<<(unsigned long long value) { return *this << NumberText(value, radix).units; }
