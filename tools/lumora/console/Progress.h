#pragma once

#include "lumora/console/Console.h"

#include <cstddef>
#include <string_view>

namespace Lumora {

/// Shows a person at the terminal how far a longer piece of work has got.
class Progress
{
public:
    Progress(Console& console, size_t total) : console(console), total(total) {}
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { console.ShowPassing({}); }

    /// The work on the next file begins.
    void Next(std::wstring_view name);

private:
    Console& console;
    size_t total;
    size_t count = 0;
};

} // namespace Lumora
