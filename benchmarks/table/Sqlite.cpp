// Pages in a data base of SQLite: rows of 1024 bytes by their number, through one handle of incremental transfer.

#include <algorithm>
#include <sqlite3.h>

#include "Reads.h"

namespace {

/// A data base with the pages of the content, without a journal.
class Base {
 public:
  explicit Base(const Setting& setting) : target_(setting.directory) {
    Expect(sqlite3_open(target_.Name().c_str(), &base_) == SQLITE_OK, "sqlite");
    Do("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE;"
       "CREATE TABLE pages (bytes BLOB); BEGIN");
    Do("PRAGMA cache_size = -" + std::to_string(setting.cache));
    sqlite3_stmt* insert = nullptr;
    Expect(sqlite3_prepare_v2(base_, "INSERT INTO pages VALUES (?)", -1, &insert, nullptr) == SQLITE_OK, "sqlite");
    const HostFile file = HostFile::Open(setting.content);
    for (std::int64_t page = 0; page < PagesIn(setting.size); ++page) {
      char bytes[kPage];
      file.ReadPage(page, bytes);
      sqlite3_bind_blob(insert, 1, bytes, kPage, SQLITE_TRANSIENT);
      Expect(sqlite3_step(insert) == SQLITE_DONE, "sqlite");
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    Do("COMMIT");
  }
  ~Base() { sqlite3_close(base_); }
  Base(const Base&) = delete;
  Base& operator=(const Base&) = delete;

  void Begin(bool forChange) {
    Do("BEGIN");
    Expect(sqlite3_blob_open(base_, "main", "pages", "bytes", 1, forChange ? 1 : 0, &blob_) == SQLITE_OK, "sqlite");
  }
  void End() {
    sqlite3_blob_close(blob_);
    Do("COMMIT");
  }
  void Read(std::int64_t page, char* bytes) {
    sqlite3_blob_reopen(blob_, page + 1);
    sqlite3_blob_read(blob_, bytes, kPage, 0);
  }
  /// The page that was read last.
  void Write(const char* bytes) { sqlite3_blob_write(blob_, bytes, kPage, 0); }

 private:
  void Do(const std::string& statement) {
    const bool done = sqlite3_exec(base_, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    Expect(done, std::string("sqlite: ") + sqlite3_errmsg(base_));
  }

  const Target target_;
  sqlite3* base_ = nullptr;
  sqlite3_blob* blob_ = nullptr;
};

/// Line ends, page by page.
Contestant LineEnds(const Setting& setting) {
  const auto base = std::make_shared<Base>(setting);
  const auto count = std::make_shared<std::ptrdiff_t>(0);
  const auto run = [=] {
    *count = 0;
    base->Begin(false);
    for (std::int64_t page = 0; page < PagesIn(setting.size); ++page) {
      char bytes[kPage];
      base->Read(page, bytes);
      *count += std::count(bytes, bytes + kPage, '\n');
    }
    base->End();
  };
  return {run, [=] { return static_cast<std::uint64_t>(*count); }};
}

}  // namespace

std::vector<ContestantEntry> SqliteContestants() {
  return {{"line ends/sqlite", LineEnds},
          {"page/sqlite", PagesOfStore<Base, false>},
          {"random/page in sqlite", PagesOfStore<Base, true>}};
}
