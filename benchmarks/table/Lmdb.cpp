// Pages in a data base of LMDB: values of 1024 bytes by their number, in a map of the file.

#include <lmdb.h>

#include "Reads.h"

namespace {

void Do(int result) { Expect(result == MDB_SUCCESS, "lmdb"); }

/// Reads of pages at random; with `kEdit` each is changed and put back, all in one transaction that is not synced.
template <bool kEdit>
class Lmdb : public RandomReads {
 public:
  explicit Lmdb(const Setting& setting) : RandomReads(setting, kPage, kPage), target_(setting.directory) {
    Do(mdb_env_create(&environment_));
    Do(mdb_env_set_mapsize(environment_, static_cast<std::size_t>(setting.size) * 8));
    Do(mdb_env_open(environment_, target_.Name().c_str(), MDB_NOSUBDIR | MDB_NOLOCK | MDB_NOSYNC | MDB_WRITEMAP, 0600));
    MDB_txn* fill = nullptr;
    Do(mdb_txn_begin(environment_, nullptr, 0, &fill));
    Do(mdb_dbi_open(fill, nullptr, MDB_INTEGERKEY, &pages_));
    const HostFile file = HostFile::Open(setting.content);
    for (std::int64_t page = 0; page < setting.size / kPage; ++page) {
      char bytes[kPage];
      file.ReadPage(page, bytes);
      Put(fill, page, bytes, MDB_APPEND);
    }
    Do(mdb_txn_commit(fill));
  }
  ~Lmdb() override { mdb_env_close(environment_); }
  void Run() override {
    MDB_txn* round = nullptr;
    Do(mdb_txn_begin(environment_, nullptr, kEdit ? 0 : MDB_RDONLY, &round));
    ReadAll([&](std::int32_t place, char* bytes) {
      std::int64_t page = place / kPage;
      MDB_val key = {sizeof page, &page};
      MDB_val value = {};
      Do(mdb_get(round, pages_, &key, &value));
      std::memcpy(bytes, value.mv_data, kPage);
      if (!kEdit) return;
      std::memmove(bytes + 512, bytes + 496, 496);
      Put(round, page, bytes, 0);
    });
    Do(mdb_txn_commit(round));
  }
  std::uint64_t Check() override { return kEdit ? 0 : RandomReads::Check(); }

 private:
  void Put(MDB_txn* transaction, std::int64_t page, char* bytes, unsigned flags) const {
    MDB_val key = {sizeof page, &page};
    MDB_val value = {kPage, bytes};
    Do(mdb_put(transaction, pages_, &key, &value, flags));
  }

  const Target target_;
  MDB_env* environment_ = nullptr;
  MDB_dbi pages_ = 0;
};

}  // namespace

std::vector<ContestantEntry> LmdbContestants() {
  return {{"page/lmdb", Make<Lmdb<false>>}, {"random/lmdb", Make<Lmdb<true>>}};
}
