#include "lumora/console/Progress.h"

#include <string>

namespace Lumora {

void Progress::Next(std::wstring_view name)
{
    // A few files are done before anybody could read the line.
    constexpr size_t fewFiles = 3;
    ++count;
    if (total > fewFiles)
        console.ShowPassing(std::to_wstring(count) + L" of " + std::to_wstring(total) + L": " +
                            std::wstring(name));
}

} // namespace Lumora
