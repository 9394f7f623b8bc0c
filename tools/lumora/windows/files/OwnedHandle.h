#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace Lumora {

struct HandleCloser
{
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

/// A handle of the kernel that is closed when it is no longer needed. There is none if it is null.
using OwnedHandle = std::unique_ptr<std::remove_pointer_t<HANDLE>, HandleCloser>;

} // namespace Lumora
