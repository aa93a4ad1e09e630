// tree: walks a directory and all below it, and prints for each directory how many bytes its files have, all below it included.
//
// What cannot be opened, has a full name of 260 units or more, or has over 2^31-1 bytes is told and not counted. Links and
// devices are passed over.

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <string>

#include "System.h"
#include "Texts.h"
#include "hfile/HFile.h"
#include "hfile/HFileDir.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kNameSize = 261;

int notCounted = 0;

std::int64_t PassOver(const TString& name, const char* reason) {
  std::fprintf(stderr, "tree: %s: %s\n", NativeNameOf(name).c_str(), reason);
  ++notCounted;
  return 0;
}

std::int64_t SizeOf(const TString& name) {
  HFile file;
  if (fs::file_size(PathOf(name)) > INT32_MAX) return PassOver(name, "over 2147483647 bytes");
  return file.OpenSeqRead(name.c_str()) ? file.Length() : PassOver(name, TextOf(file.res).c_str());
}

/// `directory` is a full name.
std::int64_t Walk(const TString& directory) {
  std::int64_t bytes = 0;
  HFileDir entries;
  TChar name[kNameSize];
  for (bool found = entries.FindFirst(name, kNameSize, (directory + TSTR("/*")).c_str()); found;
       found = entries.FindNext(name, kNameSize)) {
    const TString entry = name;
    // "." and ".." come as the directory and its parent; a name that fills the buffer may have been cut.
    if (entry.size() <= directory.size()) continue;
    std::error_code error;
    const fs::file_type type = IsLink(entry) ? fs::file_type::symlink : fs::status(PathOf(entry), error).type();
    if (entry.size() + 1 >= kNameSize) {
      bytes += PassOver(entry, "the name is too long");
    } else if (type == fs::file_type::directory) {
      bytes += Walk(entry);
    } else if (type == fs::file_type::regular) {
      bytes += SizeOf(entry);
    }
  }
  // Every directory that can be read has entries.
  if (entries.Count() == 0) PassOver(directory, "cannot be read");
  std::printf("%12" PRId64 "  %s\n", bytes, NativeNameOf(directory).c_str());
  return bytes;
}

}  // namespace

int Run(const Arguments& arguments) {
  if (arguments.size() > 1) {
    std::fputs("usage: tree [DIRECTORY]\n", stderr);
    return 2;
  }
  const TString given = arguments.empty() ? TSTR(".") : arguments[0];
  try {
    TChar root[kNameSize];
    if (!HFile::IsDirectory(given.c_str())) {
      std::fprintf(stderr, "tree: %s: no such directory\n", NativeNameOf(given).c_str());
      return 1;
    }
    HFile::GetFullName(root, kNameSize, given.c_str());
    Walk(root);
  } catch (const std::exception& failure) {
    PassOver(given, failure.what());
  }
  return notCounted == 0 ? 0 : 1;
}
