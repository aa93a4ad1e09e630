// What every measurement needs: the clock, the middle of several times, and checks of results.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

/// Seconds since some point in the past.
inline double Now() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Seconds that the processor has worked for this process.
inline double ProcessorNow() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// The middle one of several values, the mean of two where their number is even.
inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

/// A wrong result ends the measurement.
inline void Expect(bool right, const std::string& what) {
  if (!right) throw std::runtime_error(what);
}

/// Keeps the compiler from leaving out what fills the bytes at `data`.
inline void Keep(const void* data) { asm volatile("" : : "r"(data) : "memory"); }

/// The first eight bytes at `bytes` as a number.
inline std::uint64_t FirstWord(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// Sum of bytes that come in pieces, each but the last a multiple of eight bytes long.
class Checksum {
 public:
  void Add(const char* bytes, std::size_t count) {
    for (; count >= 8; bytes += 8, count -= 8) Mix(FirstWord(bytes));
    if (count == 0) return;
    char rest[8] = {};
    std::memcpy(rest, bytes, count);
    Mix(FirstWord(rest) + count);
  }
  std::uint64_t Value() const { return value_; }

 private:
  void Mix(std::uint64_t word) {
    value_ = (value_ ^ word) * 0x9E3779B97F4A7C15;
    value_ ^= value_ >> 29;
  }
  std::uint64_t value_ = 1;
};
