#include "hfile/HFile.h"
#include "hfile/Require.h"
#include "host/Host.h"
#include "host/Line.h"
#include "hsys/HostNames.h"
#include "hsys/Strings.h"

namespace {

/// Whether a buffer for a name has room for anything.
bool RequireBuffer(const TChar* buffer, std::uint32_t size, std::int32_t line = VFILE_LINE) {
  return hfile::Require(buffer != nullptr, line) && hfile::Require(size > 0, line);
}

/// Whether a part of a name either has a buffer or is not wanted.
bool RequirePart(const TChar* buffer, std::uint32_t size, std::int32_t line = VFILE_LINE) {
  return hfile::Require((buffer != nullptr) == (size > 0), line);
}

}  // namespace

bool HFile::IsDirSep(TChar unit) { return hsys::IsDirSep(unit); }

void HFile::CondAppendDirSep(TChar* buffer, std::uint32_t size) {
  if (RequireBuffer(buffer, size)) hsys::CondAppendDirSep(buffer, size);
}

void HFile::BuildName(TChar* buffer, std::uint32_t size, const TChar* path, const TChar* name) {
  if (!RequireBuffer(buffer, size)) return;
  AssignStr(buffer, size, path);
  AppendStr(buffer, size, name);
}

void HFile::BuildName(TChar* buffer, std::uint32_t size, const TChar* drive, const TChar* dir, const TChar* fname,
                      const TChar* ext) {
  if (!RequireBuffer(buffer, size)) return;
  host::_wmakepath_s(buffer, size, drive, dir, fname, ext);
}

void HFile::SplitName(TChar* drive, std::uint32_t driveSize, TChar* dir, std::uint32_t dirSize, TChar* fname,
                      std::uint32_t fnameSize, TChar* ext, std::uint32_t extSize, const TChar* path) {
  if (!RequirePart(drive, driveSize) || !RequirePart(dir, dirSize)) return;
  if (!RequirePart(fname, fnameSize) || !RequirePart(ext, extSize)) return;
  if (!hfile::Require(path != nullptr)) return;
  host::_wsplitpath_s(path, drive, driveSize, dir, dirSize, fname, fnameSize, ext, extSize);
}

void HFile::SplitName(TChar* dir, std::uint32_t dirSize, TChar* name, std::uint32_t nameSize, const TChar* path) {
  if (!RequireBuffer(dir, dirSize) || !RequireBuffer(name, nameSize) || !hfile::Require(path != nullptr)) return;
  TChar drivePart[hsys::kNameSize];
  TChar dirPart[hsys::kNameSize];
  TChar namePart[hsys::kNameSize];
  TChar extPart[hsys::kNameSize];
  SplitName(drivePart, hsys::kNameSize, dirPart, hsys::kNameSize, namePart, hsys::kNameSize, extPart, hsys::kNameSize,
            path);
  BuildName(dir, dirSize, drivePart, dirPart);
  BuildName(name, nameSize, namePart, extPart);
}

void HFile::GetFullName(TChar* buffer, std::uint32_t size, const TChar* name) {
  if (!RequireBuffer(buffer, size) || !hfile::Require(name != nullptr)) return;
  if (buffer != name) AssignStr(buffer, size, name);
  host::_wfullpath(buffer, name, size);
}

bool HFile::EqualName(const TChar* left, const TChar* right) { return EqualStrI(left, right); }

// The series: "~", "~1" to "~9", "~10" to "~99", each followed by what is left of the extension. `c`, `d` and `e` are the first
// three units behind the dot.
bool HFile::GetNextBackupExt(TChar* ext, std::uint32_t size) {
  if (!RequireBuffer(ext, size)) return false;
  TChar* c = *ext == '.' ? ext + 1 : ext;
  if (*c == 0) {
    AssignStr(ext, size, TSTR(".~"));
    return true;
  }
  TChar* d = c + 1;
  TChar* e = *d == 0 ? d : d + 1;
  if (*c != '~') {
    *c = '~';
    if (host::iswdigit(*d) || host::iswdigit(*e)) *d = 0;
    return true;
  }
  if (*d == 0) {
    d[0] = '1';
    d[1] = 0;
  } else if (!host::iswdigit(*d)) {
    *d = '1';
    if (host::iswdigit(*e)) *e = 0;
  } else if (host::iswdigit(*e)) {
    if (*d >= '9' && *e >= '9') return false;
    *d = static_cast<TChar>(*e < '9' ? *d : *d + 1);
    *e = static_cast<TChar>(*e < '9' ? *e + 1 : '0');
  } else if (*d < '9') {
    ++*d;
  } else {
    // The extension grows by a digit only where it ends here.
    if (*e == 0) e[1] = 0;
    d[0] = '1';
    e[0] = '0';
  }
  return true;
}
