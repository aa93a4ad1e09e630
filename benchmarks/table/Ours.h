// What the contestants that use the library have in common.
#pragma once

#include <string>
#include <vector>

#include "Contestant.h"
#include "HostFile.h"
#include "Measuring.h"
#include "vfile/VFile.h"

inline TString Units(const std::string& name) { return {name.begin(), name.end()}; }

/// Those of the thread.
inline void UseSettings(const Setting& setting) {
  VFile::SetMaxCacheSize(setting.cache);
  VFile::SetTempDir(Units(setting.directory).c_str());
}

inline void LoadContent(VFile& file, const Setting& setting) {
  file.Load(Units(setting.content).c_str(), FILE_SHARE_READ);
  Expect(file.res == resDone && file.Length() == setting.size, "load");
}

inline std::uint64_t SumOf(VFile& file) {
  Checksum sum;
  std::vector<char> piece(1 << 16);
  file.SetPos(0);
  while (const std::int32_t count = file.ReadBytes(piece.data(), static_cast<std::int32_t>(piece.size()))) {
    sum.Add(piece.data(), static_cast<std::size_t>(count));
  }
  return sum.Value();
}

/// A contestant with a file of the library.
class OnFile : public Contestant {
 protected:
  explicit OnFile(const Setting& setting) : setting_(setting) { UseSettings(setting); }
  void Load() { LoadContent(file_, setting_); }

  const Setting setting_;
  VFile file_;
};
