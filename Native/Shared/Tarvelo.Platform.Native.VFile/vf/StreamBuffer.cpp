// One buffer serves both directions: it holds bytes that were read, from `base_` on, or bytes to be written there, or none.

#include <algorithm>

#include "tcharvfile/Inside.h"
#include "vf/Streams.h"

namespace vf {

StreamBuffer::StreamBuffer(VFile& file) : file_(file), target_(&file), base_(file.GetPos()) {}

StreamBuffer::StreamBuffer(const VFile& file) : file_(file), target_(nullptr), base_(file.GetPos()) {}

StreamBuffer::~StreamBuffer() {
  try {
    WriteOut();
  } catch (...) {
    // What a halt procedure threw; the file is as it was.
  }
}

/// Where the next byte is read or written.
std::int32_t StreamBuffer::Place() const {
  const std::ptrdiff_t passed = pbase() != nullptr ? pptr() - pbase() : gptr() - eback();
  return base_ + static_cast<std::int32_t>(passed);
}

bool StreamBuffer::Write(const char* bytes, std::int32_t count) {
  target_->ReplaceBuf(base_, target_->FlagOn(vfInsert) ? 0 : SameLen, bytes, count);
  if (target_->res != resDone) return false;
  base_ += count;
  return true;
}

/// Gives the file what waits to be written; what it refuses is dropped.
bool StreamBuffer::WriteOut() {
  const char* first = pbase();
  const auto count = static_cast<std::int32_t>(pptr() - first);
  setp(nullptr, nullptr);
  return count == 0 || Write(first, count);
}

/// Forgets what was read and not taken. Nothing waits to be written.
void StreamBuffer::DropRead() {
  base_ = Place();
  setg(nullptr, nullptr, nullptr);
}

// ---- In ----

StreamBuffer::int_type StreamBuffer::underflow() {
  if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
  if (!WriteOut()) return traits_type::eof();
  DropRead();
  const std::int32_t got = file_.ReadAt(base_, buffer_, kSize);
  if (got == 0) return traits_type::eof();
  setg(buffer_, buffer_, buffer_ + got);
  return traits_type::to_int_type(*gptr());
}

/// Steps back, over the start of the buffer too; another byte than the one that was read cannot be put back.
StreamBuffer::int_type StreamBuffer::pbackfail(int_type ch) {
  if (!WriteOut()) return traits_type::eof();
  const std::int32_t place = Place();
  char before;
  if (place == 0 || file_.ReadAt(place - 1, &before, 1) == 0) return traits_type::eof();
  const bool any = traits_type::eq_int_type(ch, traits_type::eof());
  if (!any && !traits_type::eq(before, traits_type::to_char_type(ch))) return traits_type::eof();
  base_ = std::max(place - kSize / 2, 0);
  const std::int32_t got = file_.ReadAt(base_, buffer_, kSize);
  const std::int32_t back = place - 1 - base_;
  if (got <= back) {
    // Behind a halt that returned.
    base_ = place;
    setg(nullptr, nullptr, nullptr);
    return traits_type::eof();
  }
  setg(buffer_, buffer_ + back, buffer_ + got);
  return traits_type::not_eof(ch);
}

std::streamsize StreamBuffer::xsgetn(char* bytes, std::streamsize count) {
  if (count <= 0) return 0;
  std::streamsize done = std::min<std::streamsize>(count, egptr() - gptr());
  std::copy_n(gptr(), done, bytes);
  gbump(static_cast<int>(done));
  if (done == count) return done;
  if (!WriteOut()) return done;
  if (count - done < kSize) return done + std::streambuf::xsgetn(bytes + done, count - done);
  DropRead();
  const auto wanted = static_cast<std::int32_t>(std::min<std::streamsize>(count - done, MaxLen));
  const std::int32_t got = file_.ReadAt(base_, bytes + done, wanted);
  base_ += got;
  return done + got;
}

std::streamsize StreamBuffer::showmanyc() {
  const std::int32_t left = file_.Length() - Place();
  return left > 0 ? left : -1;
}

// ---- Out ----

StreamBuffer::int_type StreamBuffer::overflow(int_type ch) {
  if (target_ == nullptr || !WriteOut()) return traits_type::eof();
  DropRead();
  setp(buffer_, buffer_ + kSize);
  if (!traits_type::eq_int_type(ch, traits_type::eof())) {
    *pptr() = traits_type::to_char_type(ch);
    pbump(1);
  }
  return traits_type::not_eof(ch);
}

std::streamsize StreamBuffer::xsputn(const char* bytes, std::streamsize count) {
  if (count < kSize) return std::streambuf::xsputn(bytes, count);
  if (target_ == nullptr || !WriteOut()) return 0;
  if (!vfile::Inside::AdmitSize(*target_, static_cast<std::size_t>(count))) return 0;
  DropRead();
  return Write(bytes, static_cast<std::int32_t>(count)) ? count : 0;
}

// ---- Places ----

StreamBuffer::pos_type StreamBuffer::seekoff(off_type offset, std::ios_base::seekdir origin,
                                             std::ios_base::openmode which) {
  if (origin == std::ios_base::cur && offset == 0) return Place();
  if (!WriteOut()) return off_type{-1};
  const off_type length = file_.Length();
  const off_type from = origin == std::ios_base::beg ? 0 : origin == std::ios_base::cur ? Place() : length;
  if (offset < -from || offset > length - from) return off_type{-1};
  return seekpos(from + offset, which);
}

StreamBuffer::pos_type StreamBuffer::seekpos(pos_type position, std::ios_base::openmode /*which*/) {
  if (!WriteOut()) return off_type{-1};
  const off_type place = position;
  if (place < 0 || place > file_.Length()) return off_type{-1};
  DropRead();
  base_ = static_cast<std::int32_t>(place);
  return position;
}

int StreamBuffer::sync() {
  if (!WriteOut()) return -1;
  DropRead();
  base_ = std::min(base_, file_.Length());
  return 0;
}

}  // namespace vf
