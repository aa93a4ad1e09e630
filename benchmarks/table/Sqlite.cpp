// Pages in a data base of SQLite: rows of 1024 bytes by their number, through one handle of incremental transfer.

#include <memory>
#include <sqlite3.h>

#include "Reads.h"

namespace {

/// Reads of pages at random; with `kEdit` each is changed and written back, all in one transaction, without a journal.
template <bool kEdit>
class Sqlite : public RandomReads {
 public:
  explicit Sqlite(const Setting& setting) : RandomReads(setting, kPage, kPage), target_(setting.directory) {
    Expect(sqlite3_open(target_.Name().c_str(), &base_) == SQLITE_OK, "sqlite");
    Do("PRAGMA page_size = 4096; PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
       "PRAGMA cache_size = -" +
       std::to_string(setting.cache) +
       "; PRAGMA locking_mode = EXCLUSIVE;"
       "CREATE TABLE pages (bytes BLOB); BEGIN");
    Fill(HostFile::Open(setting.content), setting.size / kPage);
    Do("COMMIT");
  }
  ~Sqlite() override { sqlite3_close(base_); }
  void Run() override {
    Do("BEGIN");
    sqlite3_blob* blob = nullptr;
    Expect(sqlite3_blob_open(base_, "main", "pages", "bytes", 1, kEdit ? 1 : 0, &blob) == SQLITE_OK, "sqlite blob");
    ReadAll([&](std::int32_t place, char* bytes) {
      sqlite3_blob_reopen(blob, place / kPage + 1);
      sqlite3_blob_read(blob, bytes, kPage, 0);
      if (!kEdit) return;
      std::memmove(bytes + 512, bytes + 496, 496);
      sqlite3_blob_write(blob, bytes, kPage, 0);
    });
    sqlite3_blob_close(blob);
    Do("COMMIT");
  }
  std::uint64_t Check() override { return kEdit ? 0 : RandomReads::Check(); }

 private:
  void Do(const std::string& statement) {
    const bool done = sqlite3_exec(base_, statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    Expect(done, std::string("sqlite: ") + sqlite3_errmsg(base_));
  }
  void Fill(const HostFile& file, std::int64_t pages) {
    sqlite3_stmt* insert = nullptr;
    Expect(sqlite3_prepare_v2(base_, "INSERT INTO pages VALUES (?)", -1, &insert, nullptr) == SQLITE_OK, "sqlite");
    for (std::int64_t page = 0; page < pages; ++page) {
      char bytes[kPage];
      file.ReadPage(page, bytes);
      sqlite3_bind_blob(insert, 1, bytes, kPage, SQLITE_TRANSIENT);
      Expect(sqlite3_step(insert) == SQLITE_DONE, "sqlite");
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
  }

  const Target target_;
  sqlite3* base_ = nullptr;
};

}  // namespace

std::vector<ContestantEntry> SqliteContestants() {
  return {{"page/sqlite", Make<Sqlite<false>>}, {"random/sqlite", Make<Sqlite<true>>}};
}
