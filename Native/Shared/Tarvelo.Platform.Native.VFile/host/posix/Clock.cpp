#include <cerrno>
#include <ctime>

#include "host/posix/LocalTime.h"
#include "host/posix/PosixNames.h"

namespace host {
namespace {

bool IsInCalendar(const SYSTEMTIME& time) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (time.wYear < 1601 || time.wYear > 30827 || time.wMonth < 1 || time.wMonth > 12) return false;
  const bool leap = (time.wYear % 4 == 0 && time.wYear % 100 != 0) || time.wYear % 400 == 0;
  const int days = kDays[time.wMonth - 1] + (leap && time.wMonth == 2 ? 1 : 0);
  return time.wDay >= 1 && time.wDay <= days && time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 &&
         time.wMilliseconds < 1000;
}

}  // namespace

std::uint32_t GetTickCount() {
  timespec now;
  clock_gettime(CLOCK_BOOTTIME, &now);
  return static_cast<std::uint32_t>(static_cast<std::uint64_t>(now.tv_sec) * 1000 +
                                    static_cast<std::uint64_t>(now.tv_nsec) / 1000000);
}

void GetLocalTime(SYSTEMTIME* time) {
  timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  tzset();
  std::tm local = {};
  localtime_r(&now.tv_sec, &local);
  const auto word = [](long value) { return static_cast<std::uint16_t>(value); };
  *time = {word(local.tm_year + 1900), word(local.tm_mon + 1), word(local.tm_wday), word(local.tm_mday),
           word(local.tm_hour),        word(local.tm_min),     word(local.tm_sec),  word(now.tv_nsec / 1000000)};
}

bool posix::MomentOf(const SYSTEMTIME& time, timespec& moment) {
  if (!IsInCalendar(time)) return false;
  std::tm local = {};
  local.tm_year = time.wYear - 1900;
  local.tm_mon = time.wMonth - 1;
  local.tm_mday = time.wDay;
  local.tm_hour = time.wHour;
  local.tm_min = time.wMinute;
  local.tm_sec = time.wSecond;
  local.tm_isdst = -1;
  local.tm_wday = -1;
  moment.tv_sec = mktime(&local);
  moment.tv_nsec = time.wMilliseconds * 1000000L;
  // A time that a change of the clock leaves out comes back as another one, a moment out of range with its day of the week
  // unknown.
  return local.tm_wday >= 0 && local.tm_mday == time.wDay && local.tm_hour == time.wHour &&
         local.tm_min == time.wMinute && local.tm_sec == time.wSecond;
}

bool SetLocalTime(const SYSTEMTIME* time) {
  timespec moment;
  if (!posix::MomentOf(*time, moment)) return posix::Fail(ERROR_INVALID_PARAMETER);
  return clock_settime(CLOCK_REALTIME, &moment) == 0 || posix::Fail(posix::ErrorFromErrno(errno));
}

}  // namespace host
