/// @file
/// What the layer above the classes reaches inside them.
#pragma once

#include <cstddef>

#include "tcharvfile/TCharVFile.h"

namespace vfile {

class Inside {
 public:
  /// The bytes of either kind of file.
  static const VFile& FileOf(const VFile& file) { return file; }
  static const VFile& FileOf(const TCharVFile& text) { return text; }
  static VFile& FileOf(VFile& file) { return file; }
  static VFile& FileOf(TCharVFile& text) { return text; }

  static bool OnOwnerThread(const VFile& file) { return file.OnOwnerThread(); }
  static void ExchangeAll(VFile& left, VFile& right) { left.ExchangeAll(right); }
  static bool AdmitSize(VFile& file, std::size_t size) { return file.AdmitSize(size); }
  static Meter*& MeterOf(VFile& file) { return file.meter; }
  static Meter* MeterOf(const VFile& file) { return file.meter; }
  static const std::uint32_t& ChangesOf(const VFile& file) { return file.changes; }

  /// Moves a cursor, new or still valid, to `position`, 0 to the length: to the start of a block rather than the end of the one before.
  static void Seek(const VFile& file, BlkRdr& cursor, std::int32_t position) {
    if (cursor.ptr == nullptr) cursor = file.cur;
    file.Walk(cursor, position, false);
  }
  /// Copies `count` bytes at the cursor, which its block has; false behind a halt that returned.
  static bool Copy(const VFile& file, const BlkRdr& cursor, void* bytes, std::int16_t count) {
    return file.CopyC(cursor, bytes, count);
  }

  static void LoadText(TCharVFile& text, const TChar* fileName, TCharVFile::Encoding& encoding, std::uint32_t shareMode,
                       host::LossRecord* losses) {
    text.LoadText(fileName, encoding, shareMode, losses);
  }
  static void SaveText(TCharVFile& text, const TChar* fileName, bool overwrite, TCharVFile::Encoding encoding,
                       bool withBom, host::LossRecord* losses) {
    text.SaveText(fileName, overwrite, encoding, withBom, losses);
  }
  static void WriteText(TCharVFile& text, HFile& file, TCharVFile::Encoding encoding, bool withBom,
                        host::LossRecord* losses = nullptr) {
    text.WriteText(file, encoding, withBom, losses);
  }
};

}  // namespace vfile
