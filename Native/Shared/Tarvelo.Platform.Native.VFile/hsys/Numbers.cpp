#include "hsys/Numbers.h"

#include "hsys/Halt.h"

namespace {

template <typename T>
constexpr T Greater(T a, T b) {
  return a > b ? a : b;
}
template <typename T>
constexpr T Lesser(T a, T b) {
  return b > a ? a : b;
}
template <typename T>
constexpr T SignOf(T value) {
  return static_cast<T>(value > 0 ? 1 : value < 0 ? -1 : 0);
}

constexpr std::int32_t Join(std::uint32_t hi, std::uint32_t lo, int bits) {
  return static_cast<std::int32_t>(hi << bits | lo);
}

constexpr std::uint32_t Byte(char value) { return static_cast<unsigned char>(value); }

constexpr char ByteAt(std::int32_t value, int shift) {
  return static_cast<char>(static_cast<unsigned char>(static_cast<std::uint32_t>(value) >> shift));
}

}  // namespace

std::int16_t MaxS(std::int16_t a, std::int16_t b) { return Greater(a, b); }
std::int16_t MinS(std::int16_t a, std::int16_t b) { return Lesser(a, b); }
std::int16_t SignS(std::int16_t value) { return SignOf(value); }
std::int32_t Max(std::int32_t a, std::int32_t b) { return Greater(a, b); }
std::int32_t Min(std::int32_t a, std::int32_t b) { return Lesser(a, b); }
std::int32_t Sign(std::int32_t value) { return SignOf(value); }
std::int32_t MaxL(std::int32_t a, std::int32_t b) { return Greater(a, b); }
std::int32_t MinL(std::int32_t a, std::int32_t b) { return Lesser(a, b); }
std::int32_t SignL(std::int32_t value) { return SignOf(value); }
std::int64_t MaxQ(std::int64_t a, std::int64_t b) { return Greater(a, b); }
std::int64_t MinQ(std::int64_t a, std::int64_t b) { return Lesser(a, b); }
std::int64_t SignQ(std::int64_t value) { return SignOf(value); }
double MaxR(double a, double b) { return Greater(a, b); }
double MinR(double a, double b) { return Lesser(a, b); }
double SignR(double value) { return SignOf(value); }

std::uint16_t LO(std::int32_t value) { return static_cast<std::uint16_t>(value); }
std::uint16_t HI(std::int32_t value) { return static_cast<std::uint16_t>(static_cast<std::uint32_t>(value) >> 16); }

void Short2(std::int32_t value, std::uint16_t& hi, std::uint16_t& lo) {
  hi = HI(value);
  lo = LO(value);
}

std::int32_t Long2(std::uint16_t hi, std::uint16_t lo) { return Join(hi, lo, 16); }

std::int16_t Short(std::int32_t value) {
  if (value >= 0 && HI(value) != 0) Fatal(TSTR("HSys"), 1);
  if (value < 0 && HI(value) != 0xFFFF) Fatal(TSTR("HSys"), 2);
  return static_cast<std::int16_t>(LO(value));
}

std::uint16_t ShortC(std::int32_t value) {
  if (HI(value) != 0) Fatal(TSTR("HSys"), 3);
  return LO(value);
}

std::int32_t Long(std::int32_t value) { return value; }
std::int32_t LongC(std::uint32_t value) { return static_cast<std::int32_t>(value); }
std::int32_t Int(std::uint32_t value) { return static_cast<std::int32_t>(value); }
std::uint32_t Card(std::int32_t value) { return static_cast<std::uint32_t>(value); }
double LongFloat(std::int32_t value) { return value; }

std::int32_t LongTrunc(double value) {
  constexpr std::int32_t kMost = 2147483647;
  if (value != value) return 0;
  if (value > kMost) return kMost;
  if (value < -kMost) return -kMost;
  return static_cast<std::int32_t>(value);
}

std::int16_t Build2(char hi, char lo) { return static_cast<std::int16_t>(Join(Byte(hi), Byte(lo), 8)); }

std::int32_t Build4(char b3, char b2, char b1, char b0) {
  return Join(Byte(b3) << 8 | Byte(b2), Byte(b1) << 8 | Byte(b0), 16);
}

void Extract2(std::int16_t value, char& hi, char& lo) {
  hi = ByteAt(value, 8);
  lo = ByteAt(value, 0);
}

void Extract4(std::int32_t value, char& b3, char& b2, char& b1, char& b0) {
  b3 = ByteAt(value, 24);
  b2 = ByteAt(value, 16);
  b1 = ByteAt(value, 8);
  b0 = ByteAt(value, 0);
}
