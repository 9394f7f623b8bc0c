#include "core/Text.h"

#include <algorithm>
#include <iterator>

namespace Tav::Imaging::RawImage {

std::wstring WidenText(std::span<const uint8_t> bytes)
{
    std::wstring text;
    std::transform(
        bytes.begin(), std::find(bytes.begin(), bytes.end(), uint8_t{0}), std::back_inserter(text),
        [](uint8_t byte) { return static_cast<wchar_t>(static_cast<uint16_t>(static_cast<int8_t>(byte))); });
    return text;
}

} // namespace Tav::Imaging::RawImage
