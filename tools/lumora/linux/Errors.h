#pragma once

#include "lumora/console/Failure.h"

#include <string>

namespace Lumora {

/// The error of a system call in words and by its name, as "access is denied (EACCES)".
[[nodiscard]] std::wstring DescribeError(int error);

/// Throws a Failure with the error of the last system call.
[[noreturn]] void ThrowLastError();

} // namespace Lumora
