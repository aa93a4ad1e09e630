#include "Rows.h"

namespace {

constexpr std::int32_t kEdits = 100000;
constexpr std::int32_t kMillion = 1000000;
constexpr std::int64_t kSmall = 1 * kMiB;
constexpr std::int64_t kMedium = 64 * kMiB;
constexpr std::int64_t kLarge = 1024 * kMiB;

const std::vector<Contender> kInMemory = {
    {"random/rope", "rope"}, {"random/gap", "gap buffer"}, {"random/string", "string"}};

std::string Sized(const std::string& work, std::int64_t size) {
  return work + ", " + (size == kLarge ? "1 GiB" : std::to_string(size / kMiB) + " MiB");
}

void AddEdits(std::vector<Row>& rows) {
  const std::string edits = "16-byte edits at random";
  const auto add = [&](std::int64_t size, double goal, const std::vector<Contender>& peers) {
    rows.push_back({.work = Sized(edits, size),
                    .goal = goal,
                    .limitName = "page in, move, page out",
                    .ours = {"random/vfile", "ours"},
                    .limits = {{"random/pages", "limit"}},
                    .peers = peers,
                    .size = size,
                    .count = kEdits});
  };
  add(kSmall, 1.6, kInMemory);
  add(kMedium, 2.2, {{"random/rope", "rope"}, {"random/sqlite", "sqlite page"}, {"random/lmdb", "lmdb page"}});
  add(kLarge, 2.5, {{"random/rope", "rope"}});
  rows.push_back({.work = Sized(edits, kSmall) + ", cache 2048",
                  .goal = 1. / 15,
                  .limitName = "the rope",
                  .ours = {"random/vfile", "ours", 2048},
                  .limits = {{"random/rope", "rope"}},
                  .peers = {{"random/gap", "gap buffer"}, {"random/string", "string"}},
                  .size = kSmall,
                  .count = kEdits});
  rows.push_back({.work = Sized(edits, kLarge) + ", behind 1e6 others",
                  .goal = 1.3,
                  .limitName = "a new file's",
                  .ours = {"random/fragmented", "ours"},
                  .limits = {{"random/vfile", "new"}},
                  .size = kLarge,
                  .count = kEdits});
  for (const std::int64_t size : {kMedium, kLarge}) {
    rows.push_back({.work = Sized("byte edits around a moving cursor", size),
                    .goal = 1.8,
                    .limitName = "memmove in 1 KiB",
                    .ours = {"cursor/vfile", "ours"},
                    .limits = {{"cursor/block", "memmove"}},
                    .peers = {{"cursor/gap", "gap buffer"}},
                    .size = size,
                    .count = kMillion});
  }
  const auto addTyping = [&](double goal, const char* limitName, const Contender& limit, const Contender& other) {
    rows.push_back({.work = "a million edits as people type, 100 KB",
                    .goal = goal,
                    .limitName = limitName,
                    .ours = {"typing/vfile", "ours"},
                    .limits = {limit},
                    .peers = {other, {"typing/string", "string"}},
                    .size = 102400,
                    .count = kMillion});
  };
  addTyping(1. / 12, "the rope", {"typing/rope", "rope"}, {"typing/gap", "gap buffer"});
  addTyping(5, "a gap buffer", {"typing/gap", "gap buffer"}, {"typing/rope", "rope"});
}

void AddTransfers(std::vector<Row>& rows) {
  for (const std::int64_t size : {kMedium, kLarge}) {
    rows.push_back({.work = Sized("load", size),
                    .goal = 1.15,
                    .limitName = "the loop",
                    .ours = {"load/vfile", "ours"},
                    .limits = {{"load/loop", "loop"}},
                    .size = size});
  }
  for (const std::int64_t size : {kMedium, kLarge}) {
    rows.push_back({.work = Sized("save", size),
                    .goal = 0.90,
                    .limitName = "the loop",
                    .ours = {"save/vfile", "ours"},
                    .limits = {{"save/loop", "loop"}},
                    .size = size});
  }
}

void AddSearches(std::vector<Row>& rows) {
  const auto add = [&](const std::string& work, std::int64_t size, double goal, const char* limitName,
                       const std::string& ours, const std::string& limit, ContentKind content = ContentKind::kText) {
    rows.push_back({.work = Sized(work, size),
                    .goal = goal,
                    .limitName = limitName,
                    .ours = {ours, "ours"},
                    .limits = {{limit, "limit"}},
                    .content = content,
                    .size = size});
  };
  for (const std::int64_t size : {kMedium, kLarge}) {
    add("find of an absent text, rare ends", size, 0.65, "pages and memmem", "find/rare", "find/rare/memmem");
    add("find of an absent text, common ends", size, 0.75, "pages and memmem", "find/common", "find/common/memmem");
  }
  for (const std::string ends : {"rare", "common"}) {
    add("find ignoring case, " + ends + " ends", kMedium, 1.3, "with case", "find/" + ends + "/case", "find/" + ends);
    add("find backward, " + ends + " ends", kMedium, 1.2, "forward", "find/" + ends + "/back", "find/" + ends);
  }
  for (const std::string ends : {"rare", "common"}) {
    add("FindTChars, " + ends + " ends", 2 * kMedium, 1.0, "its pages", "find/" + ends + "/units", "scan/pages",
        ContentKind::kUnits);
  }
  add("all lines of 80 bytes by LineSize", kMedium, 2.0, "its pages", "lines/size", "scan/pages");
  rows.push_back({.work = Sized("== of equal files", kMedium),
                  .goal = 1.0,
                  .limitName = "pages of both",
                  .ours = {"compare", "ours"},
                  .limits = {{"scan/pages", "pages", 70, 2}},
                  .size = kMedium});
  add("ReplaceGlobal, a hit every 4 KiB", kMedium, 0.50, "a string in one pass", "replace/vfile", "replace/string",
      ContentKind::kMarked);
  add("all lines of 80 bytes by ReadLine", kMedium, 2.5, "its pages", "lines/read", "scan/pages");
}

void AddPages(std::vector<Row>& rows) {
  rows.push_back({.work = "a thread's only file, with 100 bytes in and out",
                  .goal = 25,
                  .limitName = "a file beside another",
                  .ours = {"life/only", "ours"},
                  .limits = {{"life/beside", "beside"}},
                  .size = kMiB,
                  .count = 10000});
  rows.push_back({.work = Sized("page of a VMem at random", kMedium),
                  .goal = 1.20,
                  .limitName = "pread",
                  .ours = {"page/vmem", "ours"},
                  .limits = {{"page/file", "pread"}},
                  .peers = {{"page/sqlite", "sqlite"}, {"page/lmdb", "lmdb"}},
                  .size = kMedium,
                  .count = kEdits});
  rows.push_back({.work = Sized("page of a VMem at random", kMedium) + ", cache 32767",
                  .goal = 1.40,
                  .limitName = "pread",
                  .ours = {"page/vmem", "ours", kLargeCache},
                  .limits = {{"page/file", "pread"}},
                  .peers = {{"page/sqlite", "sqlite", kLargeCache}, {"page/lmdb", "lmdb"}},
                  .size = kMedium,
                  .count = kEdits});
  const auto addSeek = [&](std::int64_t size, double goal) {
    rows.push_back({.work = Sized("SetPos and 100 bytes at random", size),
                    .goal = goal,
                    .limitName = "pread of a page",
                    .ours = {"seek/vfile", "ours"},
                    .limits = {{"page/file", "pread"}},
                    .size = size,
                    .count = kEdits});
  };
  addSeek(kMedium, 1.5);
  addSeek(kLarge, 1.8);
  for (const std::string access : {"get", "set"}) {
    rows.push_back({.work = "typed " + access + " of an int in a cached page",
                    .goal = 1.5,
                    .limitName = "VMem::Get of length 0",
                    .ours = {"hit/" + access, "ours"},
                    .limits = {{"hit/check", "length 0"}},
                    .size = kMiB,
                    .count = 10 * kMillion});
  }
}

void AddLargeCache(std::vector<Row>& rows) {
  const auto add = [&](const std::string& work, const std::string& name, std::int32_t count = 1) {
    rows.push_back({.work = work + ", cache 32767",
                    .goal = 1.15,
                    .limitName = "cache 70",
                    .ours = {name, "ours", kLargeCache},
                    .limits = {{name, "70"}},
                    .size = kMedium,
                    .count = count});
  };
  add("16-byte edits at random", "random/vfile", kEdits);
  add("SetPos and 100 bytes at random", "seek/vfile", kEdits);
  add("load", "load/vfile");
  add("save", "save/vfile");
  add("find of an absent text", "find/rare");
  add("all lines by LineSize", "lines/size");
}

void AddTexts(std::vector<Row>& rows) {
  struct Form {
    const char* name;
    const char* key;
    ContentKind content;
    double load;
    double save;
  };
  for (const Form& form :
       {Form{"UTF-8", "utf8", ContentKind::kUtf8, 1.0, 1.0}, Form{"UTF-16", "utf16", ContentKind::kUtf16, 1.15, 0.95},
        Form{"UTF-16BE", "utf16be", ContentKind::kUtf16Be, 1.0, 1.1}}) {
    for (const std::string way : {"load", "save"}) {
      const std::string key = "text/" + way + "/" + form.key;
      const bool plain = form.content == ContentKind::kUtf16;
      std::vector<Contender> limits = {{key + "/loop", "loop"}};
      if (!plain) limits = {{key + "/icu", "loop and ICU"}, {key + "/iconv", "loop and iconv"}};
      rows.push_back({.work = Sized("text " + way + ", " + form.name, kMedium),
                      .goal = way == "load" ? form.load : form.save,
                      .limitName = plain ? "the loop" : "loop and converter",
                      .ours = {way == "load" ? "text/load" : key, "ours"},
                      .limits = limits,
                      .content = form.content,
                      .size = kMedium});
    }
  }
}

void AddMemory(std::vector<Row>& rows) {
  rows.push_back({.work = "peak memory of a load of 1 GiB and 1e5 edits",
                  .goal = 44,
                  .ours = {"random/load", "ours"},
                  .size = kLarge,
                  .count = kEdits,
                  .measure = Measure::kMemory});
  rows.push_back({.work = "peak memory of 600 MB of UTF-8, saved in each form",
                  .goal = 80,
                  .ours = {"text/peak", "ours"},
                  .content = ContentKind::kAsciiUtf8,
                  .size = 600'000'000,
                  .measure = Measure::kMemory});
}

}  // namespace

std::vector<Row> TableRows() {
  std::vector<Row> rows;
  AddEdits(rows);
  AddTransfers(rows);
  AddSearches(rows);
  AddPages(rows);
  AddLargeCache(rows);
  AddTexts(rows);
  AddMemory(rows);
  return rows;
}
