#pragma once

#include <string_view>

namespace Lumora {

/// The order in which the files of a folder are taken. No two names are alike in it, and it is the same on
/// every machine, so that several machines can share a list: letters from A to Z count as small ones, and
/// everything else by its code point. The tables of Windows for the case of other letters differ from version
/// to version.
struct ListOrder
{
    [[nodiscard]] bool operator()(std::wstring_view left, std::wstring_view right) const noexcept;
};

} // namespace Lumora
