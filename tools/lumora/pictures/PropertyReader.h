#pragma once

#include "lumora/pictures/FileProperties.h"

#include <string>

namespace Lumora {

/// Throws a Failure when the property handler is not registered, or cannot be started.
void RequirePropertyHandler();

/// What the registered property handler says about the file. Throws a Failure when it cannot read the file.
[[nodiscard]] FileProperties ReadProperties(const std::wstring& path);

} // namespace Lumora
