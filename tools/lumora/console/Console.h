#pragma once

#include "lumora/console/Output.h"

#include <string>
#include <string_view>

namespace Lumora {

/// The program's two outputs.
class Console
{
public:
    /// Writes to the standard output. The caller adds the line end.
    void Print(std::wstring_view text);

    /// Writes one line to standard error.
    void Complain(std::wstring_view line);

    /// Shows a line that the next output, or the next such line, replaces; an empty one removes it. Only a
    /// terminal gets it.
    void ShowPassing(std::wstring_view line);

    /// Whether all that was printed has reached the standard output.
    [[nodiscard]] bool IsComplete() const noexcept { return isComplete; }

private:
    void RemovePassing();

    const Output output{Output::Which::Standard};
    const Output error{Output::Which::Error};
    bool isComplete = true;
    /// How many columns of the terminal's line the passing line takes.
    size_t passingLength = 0;
};

} // namespace Lumora
