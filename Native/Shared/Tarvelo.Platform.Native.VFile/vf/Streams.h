/// @file
/// Standard streams over a byte file.
///
///     VFile file;
///     vf::OStream out(file);
///     out << "pi is about " << 3.14159 << '\n' << std::flush;
///     vf::IStream in(file);
///     in.seekg(0);
///     std::string line;
///     std::getline(in, line);
///     return out && in && line == "pi is about 3.14159" ? resDone : resNotDone;
///
/// A stream has one place for reading and writing, in bytes, which begins at the file's position. Reading does not move the file. Writing
/// inserts or overwrites at that place as `vfInsert` of the file says at that moment, and leaves the file's position behind what came
/// in. It gathers up to 4 KB: the file has them, in one change by the virtual `ReplaceBuf`, with `std::flush`, a seek, a read, the end
/// of the stream, or when they are full. Who changes the file in another way flushes the stream before it, and calls `sync` behind it.
///
/// A seek beyond the end or before the start fails, as does reading behind the end. A change that is refused, also by a failure that
/// stands in `res`, sets `badbit`, or `failbit` where a seek or a read comes upon it; the reason is in the file's `res`. What an
/// installed halt procedure throws, a stream's own operations turn into `badbit`, or pass on where `exceptions` asks for it; in
/// some standard libraries a flush or a seek always passes it on. The file must outlive the stream; its end drops what cannot be written,
/// so flush and look at the state first. Thread: the file's.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <streambuf>

#include "host/Export.h"
#include "vfile/VFile.h"

namespace vf {

/// The buffer of such a stream.
class VFILE_API StreamBuffer : public std::streambuf {
 public:
  explicit StreamBuffer(VFile& file);        ///< Of a file that is read and written.
  explicit StreamBuffer(const VFile& file);  ///< Of a file that is only read; writing fails.
  explicit StreamBuffer(const VFile&& file) = delete;
  ~StreamBuffer() override;
  StreamBuffer(const StreamBuffer&) = delete;
  StreamBuffer& operator=(const StreamBuffer&) = delete;

 protected:
  /// @{
  /// What `std::streambuf` asks for.
  VFILE_LOCAL int_type underflow() override;
  VFILE_LOCAL int_type pbackfail(int_type ch) override;
  VFILE_LOCAL std::streamsize xsgetn(char* bytes, std::streamsize count) override;
  VFILE_LOCAL std::streamsize showmanyc() override;
  VFILE_LOCAL int_type overflow(int_type ch) override;
  VFILE_LOCAL std::streamsize xsputn(const char* bytes, std::streamsize count) override;
  VFILE_LOCAL pos_type seekoff(off_type offset, std::ios_base::seekdir origin, std::ios_base::openmode which) override;
  VFILE_LOCAL pos_type seekpos(pos_type position, std::ios_base::openmode which) override;
  VFILE_LOCAL int sync() override;
  /// @}

 private:
  static constexpr std::int32_t kSize = 4096;

  VFILE_LOCAL std::int32_t Place() const;
  VFILE_LOCAL bool WriteOut();
  VFILE_LOCAL bool Write(const char* bytes, std::int32_t count);
  VFILE_LOCAL void DropRead();

  const VFile& file_;
  VFile* target_;      // the same, or null
  std::int32_t base_;  // the file position of the first byte in `buffer_`, of those read or to be written
  char buffer_[kSize];
};

/// Reads from a file.
class IStream : public std::istream {
 public:
  /// From the file's position on.
  explicit IStream(const VFile& file) : std::istream(nullptr), buffer_(file) { rdbuf(&buffer_); }
  explicit IStream(const VFile&& file) = delete;

 private:
  StreamBuffer buffer_;
};

/// Writes to a file.
class OStream : public std::ostream {
 public:
  /// From the file's position on.
  explicit OStream(VFile& file) : std::ostream(nullptr), buffer_(file) { rdbuf(&buffer_); }

 private:
  StreamBuffer buffer_;
};

/// Both.
class IOStream : public std::iostream {
 public:
  /// From the file's position on.
  explicit IOStream(VFile& file) : std::iostream(nullptr), buffer_(file) { rdbuf(&buffer_); }

 private:
  StreamBuffer buffer_;
};

}  // namespace vf
