// tree: walks a directory and all below it, and prints for each directory how many bytes its files have, all below it included.
//
// What cannot be opened, has a full name of 260 units or more, or has over 2^31-1 bytes is told and not counted. Links and
// devices are passed over.

#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <string>

#include "System.h"
#include "hfile/HFile.h"
#include "hfile/HFileDir.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kNameSize = 261;

int notCounted = 0;
int seen = 0;

/// Shows on a terminal how many entries there were; with `last` wipes it.
void Show(bool last = false) {
  static const bool onTerminal = IsTerminal(stderr);
  if (onTerminal && last) std::fprintf(stderr, "\r%*s\r", 40, "");
  if (onTerminal && !last && ++seen % 100 == 0) std::fprintf(stderr, "\r%d entries", seen);
}

std::int64_t PassOver(const vf::Name& name, const std::string& reason) {
  Show(true);
  std::fprintf(stderr, "tree: %s: %s\n", name.Utf8().c_str(), reason.c_str());
  ++notCounted;
  return 0;
}

std::int64_t SizeOf(const vf::Name& name) {
  HFile file;
  if (fs::file_size(name.Path()) > INT32_MAX) return PassOver(name, "over 2147483647 bytes");
  return file.OpenSeqRead(name) ? file.Length() : PassOver(name, vf::MessageOf(file.res));
}

/// `directory` is a full name.
std::int64_t Walk(const vf::Name& directory) {
  std::int64_t bytes = 0;
  HFileDir entries;
  TChar name[kNameSize];
  const TString pattern = directory.Units() + TSTR("/*");
  for (bool found = entries.FindFirst(name, kNameSize, pattern.c_str()); found;
       found = entries.FindNext(name, kNameSize)) {
    const vf::Name entry = name;
    // "." and ".." come as the directory and its parent; a name that fills the buffer may have been cut.
    if (entry.Units().size() <= directory.Units().size()) continue;
    Show();
    std::error_code error;
    const fs::file_type type = IsLink(entry) ? fs::file_type::symlink : fs::status(entry.Path(), error).type();
    if (entry.Units().size() + 1 >= kNameSize) {
      bytes += PassOver(entry, "the name is too long");
    } else if (type == fs::file_type::directory) {
      bytes += Walk(entry);
    } else if (type == fs::file_type::regular) {
      bytes += SizeOf(entry);
    }
  }
  // Every directory that can be read has entries.
  if (entries.Count() == 0) PassOver(directory, "cannot be read");
  Show(true);
  std::printf("%12" PRId64 "  %s\n", bytes, directory.Utf8().c_str());
  return bytes;
}

}  // namespace

int Run(const Arguments& arguments) {
  if (arguments.size() > 1) {
    std::fputs("usage: tree [DIRECTORY]\n", stderr);
    return 2;
  }
  const vf::Name given = arguments.empty() ? vf::Name(".") : arguments[0];
  try {
    TChar root[kNameSize];
    if (!HFile::IsDirectory(given)) {
      std::fprintf(stderr, "tree: %s: no such directory\n", given.Utf8().c_str());
      return 1;
    }
    HFile::GetFullName(root, kNameSize, given);
    Walk(root);
  } catch (const std::exception& failure) {
    PassOver(given, failure.what());
  }
  return notCounted == 0 ? 0 : 1;
}
