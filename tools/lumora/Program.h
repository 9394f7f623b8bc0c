#pragma once

#include <span>

namespace Lumora {

/// Runs the program with the arguments after its name. Returns the exit code.
[[nodiscard]] int RunProgram(std::span<const wchar_t* const> arguments);

} // namespace Lumora
