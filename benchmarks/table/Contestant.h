// One that does a work of the table: the library, what the machine allows, or a peer. Each runs in a process of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What a contestant is to do.
struct Setting {
  std::string directory;    ///< where swap files, and files like them, lie
  std::string content;      ///< name of the file with the content
  std::int64_t size = 0;    ///< its bytes
  std::int32_t count = 1;   ///< operations in a round
  std::int16_t cache = 70;  ///< bound of the library's cache in kilobytes
};

class Contestant {
 public:
  /// As files of the library may throw there, where a halt does.
  virtual ~Contestant() noexcept(false) = default;
  /// Comes before each round and is not measured.
  virtual void Prepare() {}
  /// A round.
  virtual void Run() = 0;
  /// Looks at what the last round has left, and throws if that is wrong. Those with the same work give the same sum of their
  /// content, or 0 for none.
  virtual std::uint64_t Check() { return 0; }
};

struct ContestantEntry {
  const char* name;
  std::unique_ptr<Contestant> (*make)(const Setting& setting);
};

/// Makes one whose constructor takes these arguments behind the setting.
template <typename Kind, auto... kArguments>
std::unique_ptr<Contestant> Make(const Setting& setting) {
  return std::make_unique<Kind>(setting, kArguments...);
}

/// Whether this build has a contestant of that name.
bool Exists(const std::string& name);
std::unique_ptr<Contestant> MakeContestant(const std::string& name, const Setting& setting);

// Those of each file.
std::vector<ContestantEntry> EditContestants();
std::vector<ContestantEntry> TransferContestants();
std::vector<ContestantEntry> ScanContestants();
std::vector<ContestantEntry> PageContestants();
std::vector<ContestantEntry> TextContestants();
std::vector<ContestantEntry> SqliteContestants();
std::vector<ContestantEntry> LmdbContestants();
