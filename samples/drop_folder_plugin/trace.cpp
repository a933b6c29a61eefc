#include "trace.h"

#include "texts.h"

#include <windows.h>

#include <new>

void Trace(const std::wstring& about, const std::wstring& what) noexcept
{
    try {
        ::OutputDebugStringW((texts::kOpening + about + what + texts::kClosing).c_str());
    } catch (const std::bad_alloc&) {
        // The plugin goes on without a line.
    }
}
