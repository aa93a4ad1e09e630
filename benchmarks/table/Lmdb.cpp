// Pages in a data base of LMDB: values of 1024 bytes by their number, in a map of the file.

#include <lmdb.h>

#include "Reads.h"

namespace {

void Do(int result) { Expect(result == MDB_SUCCESS, "lmdb"); }

/// A data base with the pages of the content, not synced.
class Base {
 public:
  explicit Base(const Setting& setting) : target_(setting.directory) {
    Do(mdb_env_create(&environment_));
    Do(mdb_env_set_mapsize(environment_, static_cast<std::size_t>(setting.size) * 8));
    Do(mdb_env_open(environment_, target_.Name().c_str(), MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOSYNC | MDB_WRITEMAP, 0600));
    Begin(true);
    Do(mdb_dbi_open(transaction_, nullptr, MDB_INTEGERKEY, &pages_));
    const HostFile file = HostFile::Open(setting.content);
    for (page_ = 0; page_ < PagesIn(setting.size); ++page_) {
      char bytes[kPage];
      file.ReadPage(page_, bytes);
      Write(bytes);
    }
    End();
  }
  ~Base() { mdb_env_close(environment_); }
  Base(const Base&) = delete;
  Base& operator=(const Base&) = delete;

  void Begin(bool forChange) { Do(mdb_txn_begin(environment_, nullptr, forChange ? 0 : MDB_RDONLY, &transaction_)); }
  void End() { Do(mdb_txn_commit(transaction_)); }
  void Read(std::int64_t page, char* bytes) {
    page_ = page;
    MDB_val key = {sizeof page_, &page_};
    MDB_val value = {};
    Do(mdb_get(transaction_, pages_, &key, &value));
    std::memcpy(bytes, value.mv_data, kPage);
  }
  /// The page that was read last.
  void Write(char* bytes) {
    MDB_val key = {sizeof page_, &page_};
    MDB_val value = {kPage, bytes};
    Do(mdb_put(transaction_, pages_, &key, &value, 0));
  }

 private:
  const Target target_;
  MDB_env* environment_ = nullptr;
  MDB_txn* transaction_ = nullptr;
  MDB_dbi pages_ = 0;
  std::int64_t page_ = 0;
};

}  // namespace

std::vector<ContestantEntry> LmdbContestants() {
  return {{"page/lmdb", PagesOfStore<Base, false>}, {"random/page in lmdb", PagesOfStore<Base, true>}};
}
