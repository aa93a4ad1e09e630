/// @file
/// The code page 1252 as a table, for hosts where it is the active one.
#pragma once

#include <sstream>
#include <string>

#include "host/Unit.h"

namespace support {

/// Of the bytes 80 to 9F. The five that stand for no character are the control of the same number.
inline constexpr TChar kHigh1252[] = {0x20AC, 0x81,   0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                      0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0x8D,   0x17D,  0x8F,
                                      0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0x9D,   0x17E,  0x178};

/// The units that a byte stands in for, without those of its own: the byte and "<", and then the units. The wide forms FF01 to FF5E are
/// left out, which have the byte of their letter.
inline constexpr char kBestFit1252[] =
    "20<2000 2001 2002 2003 2004 2005 2006 3000 21<01C3 22<02BA 030E 25<066A 27<02B9 02BC 02C8 2032 28<2320 29<2321 "
    "2A<2217 2B<250C 2510 2514 2518 251C 253C 2552 2553 2554 2555 2556 2557 2558 2559 255A 255B 255C 255D 256A 256B "
    "256C 2D<2010 2011 2212 2500 252C 2534 2550 2564 2565 2566 2567 2568 2569 2F<2044 2215 30<2080 31<2081 32<2082 "
    "33<2083 34<2074 2084 35<2075 2085 36<2076 2086 37<2077 2087 38<2078 2088 221E 39<2089 3A<0589 2236 3B<037E "
    "3C<2329 3008 3D<2017 2261 2264 2265 3E<232A 3009 41<0100 0102 0104 01CD 01DE 42<212C 43<0106 0108 010A 010C 2102 "
    "212D 44<010E 45<0112 0114 0116 0118 011A 2107 2130 46<03A6 2131 47<011C 011E 0120 0122 01E4 01E6 0393 48<0124 "
    "0126 210B 210C 210D 49<0128 012A 012C 012E 0130 0197 01CF 2110 2111 4A<0134 4B<0136 01E8 212A 4C<0139 013B 013D "
    "0141 2112 4D<2133 4E<0143 0145 0147 2115 4F<014C 014E 0150 019F 01A0 01D1 01EA 01EC 03A9 50<20A7 2118 2119 "
    "51<211A 52<0154 0156 0158 211B 211C 211D 53<015A 015C 015E 03A3 54<0162 0164 0166 01AE 0398 55<0168 016A 016C "
    "016E 0170 0172 01AF 01D3 01D5 01D7 01D9 01DB 57<0174 59<0176 5A<0179 017B 2124 2128 5B<301A 5C<2216 5D<301B "
    "5E<02C4 0302 2303 5F<02CD 0331 0332 2584 60<02CB 0300 2035 61<0101 0103 0105 01CE 01DF 03B1 62<0180 63<0107 0109 "
    "010B 010D 64<010F 0111 03B4 65<0113 0115 0117 0119 011B 03B5 212E 212F 66<03C6 67<011D 011F 0121 0123 01E5 01E7 "
    "0261 210A 68<0125 0127 04BB 210E 69<0129 012B 012D 012F 0131 01D0 6A<0135 01F0 6B<0137 01E9 6C<013A 013C 013E "
    "0142 019A 2113 6E<0144 0146 0148 207F 2229 6F<014D 014F 0151 01A1 01D2 01EB 01ED 2134 70<03C0 72<0155 0157 0159 "
    "73<015B 015D 015F 03C3 74<0163 0165 0167 01AB 03C4 75<0169 016B 016D 016F 0171 0173 01B0 01D4 01D6 01D8 01DA "
    "01DC 76<221A 77<0175 79<0177 7A<017A 017C 01B6 7C<01C0 2223 2758 7E<0303 223C 83<0191 98<2248 A2<20A1 A3<20A4 "
    "A4<263C A6<2302 2502 2524 2551 255E 255F 2560 2561 2562 2563 2588 258C 2590 2591 2592 2593 25A0 A8<0308 AB<226A "
    "300A AC<2310 AF<02C9 0304 0305 2580 B0<02DA 030A 2070 2218 B1<2213 B4<02CA 0301 B5<03BC B7<2024 2219 22C5 30FB "
    "B8<0327 BB<226B 300B C5<212B D0<0110 0189 D8<2205 DF<03B2";

inline TString From1252(const std::string& bytes) {
  TString units;
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    units += code / 32 == 4 ? kHigh1252[code % 32] : TChar{code};
  }
  return units;
}

/// A unit that has no byte is a "?"; so is each half of a pair.
inline std::string To1252(const TString& units) {
  static const std::string table = [] {
    std::string bytes(0x10000, '?');
    char byte = 0;
    std::istringstream words(kBestFit1252);
    for (std::string word; words >> word;) {
      const std::size_t head = word.find('<');
      if (head != std::string::npos) byte = static_cast<char>(std::stoi(word, nullptr, 16));
      bytes[std::stoul(word.substr(head + 1), nullptr, 16)] = byte;
    }
    for (unsigned wide = 0xFF01; wide <= 0xFF5E; ++wide) bytes[wide] = static_cast<char>(wide - 0xFEE0);
    for (unsigned code = 0; code < 256; ++code) {
      const std::string own(1, static_cast<char>(code));
      bytes[From1252(own)[0]] = own[0];
    }
    return bytes;
  }();
  std::string bytes;
  for (const TChar unit : units) bytes += table[unit];
  return bytes;
}

}  // namespace support
