#include "Converters.h"

#include <iconv.h>
#include <vector>
#ifdef TABLE_HAS_ICU
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#endif

#include "Measuring.h"

namespace {

/// Room for any conversion of the text.
Converted RoomFor(std::string_view text, ContentKind kind, Direction direction) {
  const std::size_t size = kind == ContentKind::kUtf16Be      ? text.size() + 2
                           : direction == Direction::kToUnits ? text.size() * 2
                                                              : text.size() / 2 * 3;
  return {std::unique_ptr<char[]>(new char[size]), size};
}

}  // namespace

Converted ConvertByIconv(std::string_view text, ContentKind kind, Direction direction) {
  const char* form = kind == ContentKind::kUtf8 ? "UTF-8" : "UTF-16BE";
  const bool toUnits = direction == Direction::kToUnits;
  const iconv_t converter = iconv_open(toUnits ? "UTF-16LE" : form, toUnits ? form : "UTF-16LE");
  Converted out = RoomFor(text, kind, direction);
  char* in = const_cast<char*>(text.data());
  std::size_t left = text.size();
  char* next = out.bytes.get();
  std::size_t room = out.count;
  Expect(iconv(converter, &in, &left, &next, &room) != static_cast<std::size_t>(-1), "iconv");
  iconv_close(converter);
  out.count -= room;
  return out;
}

#ifdef TABLE_HAS_ICU

Converted ConvertByIcu(std::string_view text, ContentKind kind, Direction direction) {
  Converted out = RoomFor(text, kind, direction);
  auto* units = reinterpret_cast<UChar*>(out.bytes.get());
  const auto* textUnits = reinterpret_cast<const UChar*>(text.data());
  const auto count = static_cast<std::int32_t>(text.size());
  const auto room = static_cast<std::int32_t>(out.count);
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  if (kind == ContentKind::kUtf8) {
    if (direction == Direction::kToUnits) {
      u_strFromUTF8(units, room / 2, &length, text.data(), count, &error);
      length *= 2;
    } else {
      u_strToUTF8(out.bytes.get(), room, &length, textUnits, count / 2, &error);
    }
  } else {
    UConverter* converter = ucnv_open("UTF-16BE", &error);
    if (direction == Direction::kToUnits) {
      length = ucnv_toUChars(converter, units, room / 2, text.data(), count, &error) * 2;
    } else {
      length = ucnv_fromUChars(converter, out.bytes.get(), room, textUnits, count / 2, &error);
    }
    ucnv_close(converter);
  }
  Expect(U_SUCCESS(error), "icu");
  out.count = static_cast<std::size_t>(length);
  return out;
}

#endif
