#include "lumora/pictures/FileProperties.h"

namespace Lumora {

uint32_t FileProperties::NumberOf(MetadataProperty property) const noexcept
{
    const uint32_t* const number = std::get_if<uint32_t>(&(*this)[property]);
    return number ? *number : 0;
}

std::wstring FileProperties::TextOf(MetadataProperty property) const
{
    const PropertyValue& value = (*this)[property];
    if (const uint32_t* const number = std::get_if<uint32_t>(&value))
        return std::to_wstring(*number);
    const std::wstring* const words = std::get_if<std::wstring>(&value);
    return words ? *words : std::wstring();
}

} // namespace Lumora
