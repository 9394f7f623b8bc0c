#pragma once

#include "lumora/console/Console.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Lumora {

/// Shows a person at the terminal how far a longer piece of work has got.
class Progress
{
public:
    explicit Progress(Console& console) : console(console) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { console.ShowPassing({}); }

    /// So many files are done, this one the last, out of so many, if that is known.
    void Show(size_t done, std::optional<size_t> total, std::wstring_view name);

private:
    using Clock = std::chrono::steady_clock;

    Console& console;
    const Clock::time_point begin = Clock::now();
    Clock::time_point shown = begin;
};

/// The line for that moment.
[[nodiscard]] std::wstring ProgressLine(size_t done, std::optional<size_t> total, double seconds,
                                        std::wstring_view name);

} // namespace Lumora
