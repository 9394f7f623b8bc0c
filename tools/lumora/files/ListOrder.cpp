#include "lumora/files/ListOrder.h"

#include "lumora/console/Utf8.h"

#include <cstddef>

namespace Lumora {

namespace {

/// The next code point, and not the next unit of UTF-16: characters beyond the basic plane come last.
char32_t NextSmall(std::wstring_view name, size_t& position) noexcept
{
    const char32_t character = NextCharacter(name, position);
    return character >= U'A' && character <= U'Z' ? character - U'A' + U'a' : character;
}

} // namespace

bool ListOrder::operator()(std::wstring_view left, std::wstring_view right) const noexcept
{
    size_t leftPosition = 0;
    size_t rightPosition = 0;
    while (leftPosition < left.size() && rightPosition < right.size())
    {
        const char32_t leftCharacter = NextSmall(left, leftPosition);
        const char32_t rightCharacter = NextSmall(right, rightPosition);
        if (leftCharacter != rightCharacter)
            return leftCharacter < rightCharacter;
    }
    const bool leftIsDone = leftPosition == left.size();
    const bool rightIsDone = rightPosition == right.size();
    // Names that differ only in case can be side by side on Linux.
    return leftIsDone && rightIsDone ? left < right : leftIsDone;
}

} // namespace Lumora
