// Texts in the active code page 1252, as the system converts them.

#include <gtest/gtest.h>
#include <numeric>

#include "host/Host.h"
#include "support/CodePage1252.h"
#include "support/Texts.h"

using support::Bytes, support::From1252, support::To1252;

namespace {

using Conversion = host::CodePageConversion;

/// Every byte, or every unit, from `first` on.
template <typename String>
String All(unsigned first) {
  String all(sizeof(typename String::value_type) == 1 ? 0x100 : 0x10000, 0);
  std::iota(all.begin(), all.end(), typename String::value_type{});
  return all.substr(first);
}

/// Converts the input in pieces, into rooms; what is left of a piece comes first in the next.
std::string Converted(Conversion::Direction direction, const std::string& input, std::size_t piece, std::size_t room) {
  Conversion conversion(direction);
  EXPECT_TRUE(conversion.IsOpen());
  std::string output;
  std::string waiting;
  for (std::size_t at = 0; at < input.size(); at += piece) {
    waiting += input.substr(at, piece);
    const char* in = waiting.data();
    std::size_t left = waiting.size();
    for (bool done = false; !done;) {
      std::string given(room, '#');
      char* out = given.data();
      std::size_t free = room;
      done = conversion.Convert(in, left, out, free, at + piece >= input.size());
      EXPECT_EQ(static_cast<std::size_t>(out - given.data()), room - free);
      EXPECT_EQ(given.substr(room - free), std::string(free, '#')) << "written beyond what is told";
      if (!done && free == room) return "stands still";
      output += given.substr(0, room - free);
    }
    waiting = std::string(in, left);
  }
  EXPECT_EQ(waiting, "");
  return output;
}

TEST(CodePage, ConvertsTheSameWhereverAPieceOrARoomEnds) {
  if (host::GetACP() != 1252) GTEST_SKIP() << "the active code page is " << host::GetACP();
  const std::string bytes = All<std::string>(0) + All<std::string>(0) + All<std::string>(0);
  const TString units = All<TString>(0xD7F0).substr(0, 0x900) + All<TString>(0).substr(0, 0x2300);
  for (const std::size_t piece : {1u, 2u, 3u, 63u, 511u, 512u, 513u, 1023u, 1024u, 1025u, 99999u}) {
    for (const std::size_t room : {64u, 65u, 127u, 512u, 1025u, 99999u}) {
      EXPECT_EQ(Converted(Conversion::kToUnits, bytes, piece, room), Bytes(From1252(bytes))) << piece << " " << room;
      EXPECT_EQ(Converted(Conversion::kToBytes, Bytes(units), piece, room), To1252(units)) << piece << " " << room;
    }
  }
}

}  // namespace
