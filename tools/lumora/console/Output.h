#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Lumora {

/// One of the program's two outputs. Files and pipes get UTF-8; a terminal gets what it can show.
class Output
{
public:
    enum class Which
    {
        Standard,
        Error,
    };

    explicit Output(Which which) noexcept;

    /// Returns false if not all of the text could be written.
    bool Write(std::wstring_view text) const;

    [[nodiscard]] bool IsTerminal() const noexcept { return isTerminal; }
    /// How many characters a line of the terminal has; 80 if nobody knows.
    [[nodiscard]] size_t Columns() const noexcept;

private:
    /// What the system knows it by.
    std::intptr_t handle;
    bool isTerminal;
};

} // namespace Lumora
