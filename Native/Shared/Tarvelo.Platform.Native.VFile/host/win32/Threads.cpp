#include <new>

#include "host/win32/Windows.h"

namespace host {
namespace {

::CRITICAL_SECTION* SectionIn(CRITICAL_SECTION* section) {
  static_assert(sizeof(::CRITICAL_SECTION) <= sizeof section->storage);
  return std::launder(reinterpret_cast<::CRITICAL_SECTION*>(section->storage));
}

}  // namespace

std::uint32_t TlsAlloc() { return ::TlsAlloc(); }

bool TlsFree(std::uint32_t index) { return ::TlsFree(index) != FALSE; }

void* TlsGetValue(std::uint32_t index) { return ::TlsGetValue(index); }

bool TlsSetValue(std::uint32_t index, void* value) { return ::TlsSetValue(index, value) != FALSE; }

void InitializeCriticalSection(CRITICAL_SECTION* section) {
  ::InitializeCriticalSection(new (section->storage)::CRITICAL_SECTION);
}

void EnterCriticalSection(CRITICAL_SECTION* section) { ::EnterCriticalSection(SectionIn(section)); }

void LeaveCriticalSection(CRITICAL_SECTION* section) { ::LeaveCriticalSection(SectionIn(section)); }

void DeleteCriticalSection(CRITICAL_SECTION* section) { ::DeleteCriticalSection(SectionIn(section)); }

std::uint32_t GetCurrentThreadId() { return ::GetCurrentThreadId(); }

}  // namespace host
