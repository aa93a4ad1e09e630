// What the contestants that use the library have in common.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Contestant.h"
#include "HostFile.h"
#include "Measuring.h"
#include "tcharvfile/TCharVFile.h"
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

inline void LoadContent(TCharVFile& text, const Setting& setting) {
  text.LoadText(Units(setting.content), FILE_SHARE_READ);
  Expect(text.res == resDone && text.TCharLength() > 0, "load of a text");
}

/// A file or text with the content.
template <typename File>
std::shared_ptr<File> Loaded(const Setting& setting) {
  UseSettings(setting);
  auto file = std::make_shared<File>();
  LoadContent(*file, setting);
  return file;
}

/// Sum of what `read` brings into the buffer of 64 KiB that it is given, until that is 0 bytes.
template <typename Read>
std::uint64_t SumOfReads(Read read) {
  Checksum sum;
  std::vector<char> piece(1 << 16);
  while (const std::int32_t count = read(piece.data())) sum.Add(piece.data(), static_cast<std::size_t>(count));
  return sum.Value();
}

inline std::uint64_t SumOf(VFile& file) {
  file.SetPos(0);
  return SumOfReads([&](char* piece) { return file.ReadBytes(piece, 1 << 16); });
}

inline std::uint64_t SumOf(TCharVFile& text) {
  text.SetTCharPos(0);
  return SumOfReads([&](char* piece) { return 2 * text.ReadTChars(reinterpret_cast<TChar*>(piece), 1 << 15); });
}
