#include "hsys/NumberText.h"
#include "tcharvfile/TCharVFile.h"

using NumberText = hsys::NumberText<TChar>;

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

TCharVFile& TCharVFile::operator<<(short value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(unsigned short value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(int value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(unsigned int value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(long value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(unsigned long value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(long long value) { return *this << NumberText(value, radix).text; }
TCharVFile& TCharVFile::operator<<(unsigned long long value) { return *this << NumberText(value, radix).text; }
