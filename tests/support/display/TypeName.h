#pragma once

#include "core/PixelType.h"

#include <string>

/// The name of a pixel type, as tests are named.
inline std::string TypeName(Tav::Imaging::RawImage::PixelType type)
{
    std::string name;
    for (const wchar_t character : std::wstring(PixelTypeName(type)))
        name.push_back(static_cast<char>(character));
    return name;
}
