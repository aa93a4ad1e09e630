// tree: walks a directory and all below it, and prints for each directory how many bytes its files have, all below it included.
//
// What cannot be opened, has a full name of 260 units or more, or has over 2^31-1 bytes is told and not counted. Links and
// devices are passed over.

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <string>

#include "Texts.h"
#include "hfile/HFile.h"
#include "hfile/HFileDir.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kNameSize = 261;

int notCounted = 0;

std::int64_t PassOver(const std::string& name, const char* reason) {
  std::fprintf(stderr, "tree: %s: %s\n", name.c_str(), reason);
  ++notCounted;
  return 0;
}

std::int64_t SizeOf(const TChar* name, const std::string& text) {
  HFile file;
  if (fs::file_size(text) > INT32_MAX) return PassOver(text, "over 2147483647 bytes");
  return file.OpenSeqRead(name) ? file.Length() : PassOver(text, TextOf(file.res).c_str());
}

/// `directory` is a full name.
std::int64_t Walk(const TString& directory) {
  std::int64_t bytes = 0;
  HFileDir entries;
  TChar name[kNameSize];
  for (bool found = entries.FindFirst(name, kNameSize, (directory + TSTR("/*")).c_str()); found;
       found = entries.FindNext(name, kNameSize)) {
    const TString entry = name;
    const std::string text = NativeNameOf(entry);
    // "." and ".." come as the directory and its parent; a name that fills the buffer may have been cut.
    if (entry.size() <= directory.size()) continue;
    std::error_code error;
    const fs::file_type type = fs::symlink_status(text, error).type();
    if (entry.size() + 1 >= kNameSize) {
      bytes += PassOver(text, "the name is too long");
    } else if (type == fs::file_type::directory) {
      bytes += Walk(entry);
    } else if (type == fs::file_type::regular) {
      bytes += SizeOf(name, text);
    }
  }
  // Every directory that can be read has entries.
  if (entries.Count() == 0) PassOver(NativeNameOf(directory), "cannot be read");
  std::printf("%12" PRId64 "  %s\n", bytes, NativeNameOf(directory).c_str());
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 2) {
    std::fputs("usage: tree [DIRECTORY]\n", stderr);
    return 2;
  }
  try {
    TChar root[kNameSize];
    const char* name = argc > 1 ? argv[1] : ".";
    const TString given = NameOf(name);
    if (!HFile::IsDirectory(given.c_str())) {
      std::fprintf(stderr, "tree: %s: no such directory\n", name);
      return 1;
    }
    HFile::GetFullName(root, kNameSize, given.c_str());
    Walk(root);
  } catch (const std::exception& failure) {
    PassOver(argv[argc - 1], failure.what());
  }
  return notCounted == 0 ? 0 : 1;
}
