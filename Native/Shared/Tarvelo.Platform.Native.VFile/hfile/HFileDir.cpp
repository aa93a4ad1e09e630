#include "hfile/HFileDir.h"

#include "hfile/HFile.h"
#include "host/Host.h"
#include "hsys/HostNames.h"
#include "hsys/Strings.h"

HFileDir::HFileDir() { Init(); }

HFileDir::HFileDir(const TChar* walked) {
  Init();
  Start(walked);
}

HFileDir::~HFileDir() { Stop(); }

void HFileDir::Init() {
  static_assert(kNameSize == hsys::kNameSize);
  state = dirIdle;
  count = 0;
  pattern[0] = 0;
  dirPrefix[0] = 0;
  findData.name[0] = 0;
  findHandle = -1;
}

void HFileDir::Start(const TChar* walked) {
  Stop();
  if (walked == nullptr || *walked == 0) return;
  state = dirStarted;
  AssignStr(pattern, kNameSize, walked);
  TChar name[kNameSize];
  HFile::SplitName(dirPrefix, kNameSize, name, kNameSize, pattern);
}

void HFileDir::Stop() {
  if (findHandle != -1) host::_findclose(findHandle);
  Init();
}

bool HFileDir::FindFirst(TChar* buffer, std::uint32_t size, const TChar* walked) {
  if (buffer == nullptr) {
    Stop();
    return false;
  }
  Start(walked);
  return FindNext(buffer, size);
}

bool HFileDir::FindNext(TChar* buffer, std::uint32_t size) {
  if (buffer == nullptr) return false;
  switch (state) {
    case dirStarted:
      findHandle = host::_wfindfirst64i32(pattern, &findData);
      if (findHandle == -1) {
        Stop();
        break;
      }
      state = dirFinding;
      count = 1;
      ConstructName(buffer, size, findData.name);
      return true;
    case dirFinding:
      if (host::_wfindnext64i32(findHandle, &findData) == 0) {
        ++count;
        ConstructName(buffer, size, findData.name);
        return true;
      }
      host::_findclose(findHandle);
      findHandle = -1;
      state = dirFinished;
      break;
    default:
      break;
  }
  AssignStr(buffer, size, TSTR(""));
  return false;
}

std::int32_t HFileDir::Count() const { return count; }

void HFileDir::ConstructName(TChar* buffer, std::uint32_t size, const TChar* name) {
  TChar path[kNameSize];
  HFile::BuildName(path, kNameSize, dirPrefix, name);
  HFile::GetFullName(buffer, size, path);
}
