#include "Rows.h"

namespace {

constexpr std::int64_t kSmall = 1 * kMiB;
constexpr std::int64_t kMedium = 64 * kMiB;
constexpr std::int64_t kLarge = 1024 * kMiB;
constexpr std::int16_t kMost = 32767;
constexpr std::int32_t kEdits = 100000;
constexpr std::int32_t kMillion = 1000000;
constexpr std::int32_t kHits = 10 * kMillion;
using enum ContentKind;

}  // namespace

std::string Row::Text() const {
  if (size == 0) return work;
  const std::string text = work + ", ";
  if (size % 1000 == 0) return text + std::to_string(size / 1000000) + " MB";
  if (size < kMiB) return text + std::to_string(size / 1024) + " KiB";
  return text + (size == kLarge ? "1 GiB" : std::to_string(size / kMiB) + " MiB");
}

// clang-format off
const std::vector<Row>& TableRows() {
  static const std::vector<Row> rows = {
      // work, size, ours, {goal, limit, its holders}, peers, operations, content
      {"16-byte edits at random", kSmall, "random/vfile", {1.6, "page in, move, page out", {"random/pages"}},
       {"random/rope", "random/gap buffer", "random/string"}, kEdits},
      {"16-byte edits at random", kMedium, "random/vfile", {2.2, "page in, move, page out", {"random/pages"}},
       {"random/rope", "random/page in sqlite", "random/page in lmdb"}, kEdits},
      {"16-byte edits at random", kLarge, "random/vfile", {2.5, "page in, move, page out", {"random/pages"}},
       {"random/rope"}, kEdits},
      {"16-byte edits at random, cache 2048", kSmall, {"random/vfile", 2048}, {1. / 15, "the rope", {"random/rope"}},
       {"random/gap buffer", "random/string"}, kEdits},
      {"16-byte edits behind 1e6 others", kLarge, "random/fragmented", {1.3, "a new file's", {"random/vfile"}}, {}, kEdits},
      {"byte edits around a moving cursor", kMedium, "cursor/vfile", {1.8, "memmove in 1 KiB", {"cursor/memmove"}},
       {"cursor/gap buffer"}, kMillion},
      {"byte edits around a moving cursor", kLarge, "cursor/vfile", {1.8, "memmove in 1 KiB", {"cursor/memmove"}},
       {"cursor/gap buffer"}, kMillion},
      {"a million edits as people type", 100 << 10, "typing/vfile", {1. / 12, "the rope", {"typing/rope"}},
       {"typing/string"}, kMillion},
      {"a million edits as people type", 100 << 10, "typing/vfile", {5, "a gap buffer", {"typing/gap buffer"}},
       {"typing/string"}, kMillion},

      {"load", kMedium, "load/bytes", {1.15, "the loop", {"load/bytes/loop"}}},
      {"load", kLarge, "load/bytes", {1.15, "the loop", {"load/bytes/loop"}}},
      {"save", kMedium, "save/bytes", {0.90, "the loop", {"save/bytes/loop"}}},
      {"save", kLarge, "save/bytes", {0.90, "the loop", {"save/bytes/loop"}}},

      {"find, rare ends", kMedium, "find/rare", {0.65, "pages and memmem", {"find/rare/memmem"}}},
      {"find, common ends", kMedium, "find/common", {0.75, "pages and memmem", {"find/common/memmem"}}},
      {"find, rare ends", kLarge, "find/rare", {0.65, "pages and memmem", {"find/rare/memmem"}}},
      {"find, common ends", kLarge, "find/common", {0.75, "pages and memmem", {"find/common/memmem"}}},
      {"find ignoring case, rare ends", kMedium, "find/rare/case", {1.3, "with case", {"find/rare"}}},
      {"find ignoring case, common ends", kMedium, "find/common/case", {1.3, "with case", {"find/common"}}},
      {"find backward, rare ends", kMedium, "find/rare/back", {1.2, "forward", {"find/rare"}}},
      {"find backward, common ends", kMedium, "find/common/back", {1.2, "forward", {"find/common"}}},
      {"FindTChars, rare ends", 2 * kMedium, "find/rare/units", {1.0, "its pages", {"scan/pages"}}, {}, 1, kUnits},
      {"FindTChars, common ends", 2 * kMedium, "find/common/units", {1.0, "its pages", {"scan/pages"}}, {}, 1, kUnits},
      {"LineSize, all lines of 80 bytes", kMedium, "lines/size", {2.0, "its pages", {"scan/pages"}}},
      {"ReadLine, all lines of 80 bytes", kMedium, "lines/read", {2.5, "its pages", {"scan/pages"}}},
      {"== of equal files", kMedium, "compare/vfile", {1.0, "pages of both", {"compare/pages"}}},
      {"ReplaceGlobal, a hit every 4 KiB", kMedium, "replace/vfile", {0.50, "a string in one pass", {"replace/string"}},
       {}, 1, kMarked},

      {"a thread's only file, 100 bytes in and out", 0, "life/only", {25, "a file beside another", {"life/beside"}}, {}, 10000},
      {"VMem page at random", kMedium, "page/vmem", {1.20, "pread", {"page/pread"}}, {"page/sqlite", "page/lmdb"}, kEdits},
      {"VMem page at random, cache 32767", kMedium, {"page/vmem", kMost}, {1.40, "pread", {"page/pread"}},
       {{"page/sqlite", kMost}, "page/lmdb"}, kEdits},
      {"SetPos and 100 bytes at random", kMedium, "seek/vfile", {1.5, "pread of a page", {"page/pread"}}, {}, kEdits},
      {"SetPos and 100 bytes at random", kLarge, "seek/vfile", {1.8, "pread of a page", {"page/pread"}}, {}, kEdits},
      {"typed Get of an int in a cached page", 0, "hit/get", {1.5, "VMem::Get of length 0", {"hit/check"}}, {}, kHits},
      {"typed Set of an int in a cached page", 0, "hit/set", {1.5, "VMem::Get of length 0", {"hit/check"}}, {}, kHits},

      {"16-byte edits, cache 32767", kMedium, {"random/vfile", kMost}, {1.15, "cache 70", {"random/vfile"}}, {}, kEdits},
      {"SetPos and 100 bytes, cache 32767", kMedium, {"seek/vfile", kMost}, {1.15, "cache 70", {"seek/vfile"}}, {}, kEdits},
      {"load, cache 32767", kMedium, {"load/bytes", kMost}, {1.15, "cache 70", {"load/bytes"}}},
      {"save, cache 32767", kMedium, {"save/bytes", kMost}, {1.15, "cache 70", {"save/bytes"}}},
      {"find, rare ends, cache 32767", kMedium, {"find/rare", kMost}, {1.15, "cache 70", {"find/rare"}}},
      {"LineSize, cache 32767", kMedium, {"lines/size", kMost}, {1.15, "cache 70", {"lines/size"}}},

      {"text load, UTF-8", kMedium, "load/text",
       {1.0, "loop and converter", {"load/utf8/icu", "load/utf8/iconv"}}, {}, 1, kUtf8},
      {"text save, UTF-8", kMedium, "save/utf8",
       {1.0, "loop and converter", {"save/utf8/icu", "save/utf8/iconv"}}, {}, 1, kUtf8},
      {"text load, UTF-16", kMedium, "load/text", {1.15, "the loop", {"load/utf16/loop"}}, {}, 1, kUtf16},
      {"text save, UTF-16", kMedium, "save/utf16", {0.95, "the loop", {"save/utf16/loop"}}, {}, 1, kUtf16},
      {"text load, UTF-16BE", kMedium, "load/text",
       {1.0, "loop and converter", {"load/utf16be/icu", "load/utf16be/iconv"}}, {}, 1, kUtf16Be},
      {"text save, UTF-16BE", kMedium, "save/utf16be",
       {1.1, "loop and converter", {"save/utf16be/icu", "save/utf16be/iconv"}}, {}, 1, kUtf16Be},

      {"line ends by vf::Bytes", kMedium, "line ends/bytes", {1. / 4, "ReadByte", {"line ends/ReadByte"}},
       {"line ends/string", "line ends/rope"}},
      {"line ends by vf::Pieces", kMedium, "line ends/pieces", {2.0, "its pages", {"scan/pages"}},
       {"line ends/string", "line ends/rope's pieces", "line ends/sqlite"}},
      {"std::getline, all lines of 80 bytes", kMedium, "stream/vfile", {2.0, "a string stream", {"stream/string"}}},
      {"numbers into a stream", 0, "numbers/vfile", {2.0, "a string stream", {"numbers/string"}}, {}, kMillion},
      {"complete save", kMedium, "save/complete", {1.15, "save", {"save/bytes"}}},

      {"peak memory: load, then 1e5 edits", kLarge, "random/load", {44}, {}, kEdits},
      {"peak memory: UTF-8 in, every form out", 600000000, "load/all forms", {80}, {}, 1, kAsciiUtf8},
  };
  return rows;
}
// clang-format on
