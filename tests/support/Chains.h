/// @file
/// Virtual files whose blocks and bytes a test can see.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "host/Host.h"
#include "support/Pipe.h"
#include "vfile/VFile.h"
#include "vmem/SwapFile.h"
#include "vmem/VMem.h"

/// An operation on a file `f`, as a row of a table has it.
#define DO(...) [&]([[maybe_unused]] auto& f) { __VA_ARGS__; }

namespace support {

/// A virtual file with its data model open.
struct Peek : VFile {
  using VFile::buf, VFile::bufValid, VFile::cur, VFile::first, VFile::flags, VFile::last, VFile::length, VFile::pos;
  using VFile::type, VFile::VFile, VFile::vm, VFile::operator=;
};

using I32 = std::int32_t;
using Lengths = std::vector<int>;

constexpr std::size_t Size(std::int32_t count) { return static_cast<std::size_t>(count); }
constexpr std::int32_t Count(std::size_t size) { return static_cast<std::int32_t>(size); }

/// The bytes, read from the pages and the scratch buffer; the lengths of the blocks go into `lens`.
inline std::string Bytes(const Peek& file, Lengths* lens = nullptr) {
  std::string bytes;
  for (const BlkDesc* p = file.first; p != nullptr; p = p->next) {
    char page[BlkSize];
    file.vm->Get(p->addr, page, p->len);
    if (p == file.cur.ptr && file.bufValid) std::copy_n(file.buf, p->len, page);
    bytes.append(page, Size(p->len));
    if (lens != nullptr) lens->push_back(p->len);
  }
  return bytes;
}

inline Lengths Lens(const Peek& file) {
  Lengths lens;
  Bytes(file, &lens);
  return lens;
}

/// `count` bytes from place `from` of a text in which a byte tells its place.
inline std::string Pattern(int count, int from = 0) {
  std::string text;
  for (int i = from; i < from + count; ++i) text += static_cast<char>(i % 251 + i / 251);
  return text;
}

/// A regular file that holds `content` and stands at its start. The caller owns the handle, with which the file goes.
inline HANDLE OpenRegular(const std::string& content) {
  TChar name[261];
  const HANDLE file = vmem::CreateSwapFile(name, 261, nullptr);
  std::uint32_t done = 0;
  host::WriteFile(file, content.data(), static_cast<std::uint32_t>(content.size()), &done);
  host::SetFilePointer(file, 0, host::FILE_BEGIN);
  return file;
}

/// A file of exactly these blocks, with `content` or a `Pattern`; its position is at the end.
struct Chain : Peek {
  explicit Chain(const Lengths& lens, const std::string& content = "") {
    for (const int len : lens) {
      AppendFromFile(Pipe(content.empty() ? Pattern(len, length) : content.substr(Size(length), Size(len))).Handle(),
                     len);
    }
  }
};

}  // namespace support
