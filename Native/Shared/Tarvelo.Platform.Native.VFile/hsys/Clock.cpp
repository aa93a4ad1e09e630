#include "hsys/Clock.h"

#include "host/Host.h"

namespace {

std::uint16_t LowWord(std::int32_t value) { return static_cast<std::uint16_t>(value); }

host::SYSTEMTIME Now() {
  host::SYSTEMTIME now;
  host::GetLocalTime(&now);
  return now;
}

}  // namespace

void GetTime(std::int32_t& hour, std::int32_t& minute, std::int32_t& second, std::int32_t& millisecond) {
  const host::SYSTEMTIME now = Now();
  hour = now.wHour;
  minute = now.wMinute;
  second = now.wSecond;
  millisecond = now.wMilliseconds;
}

void SetTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond) {
  host::SYSTEMTIME time = Now();
  time.wHour = LowWord(hour);
  time.wMinute = LowWord(minute);
  time.wSecond = LowWord(second);
  time.wMilliseconds = LowWord(millisecond);
  host::SetLocalTime(&time);
}

void GetDate(std::int32_t& day, std::int32_t& month, std::int32_t& year) {
  const host::SYSTEMTIME now = Now();
  day = now.wDay;
  month = now.wMonth;
  year = now.wYear;
}

void SetDate(std::int32_t day, std::int32_t month, std::int32_t year) {
  host::SYSTEMTIME date = Now();
  date.wDay = LowWord(day);
  date.wMonth = LowWord(month);
  date.wYear = LowWord(year);
  host::SetLocalTime(&date);
}

EolKind GetEolKind() { return eolCrLf; }
