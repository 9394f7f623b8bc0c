#include "core/PixelType.h"

#include <array>

namespace Tav::Imaging::RawImage {

namespace {

struct PixelTypeFacts
{
    const wchar_t* name;
    uint32_t bits;
    uint32_t bytes;
};

constexpr std::array<PixelTypeFacts, 15> pixelTypes = {{
    {L"<unknown>", 0, 0},
    {L"UInt4", 4, 1},
    {L"UInt8", 8, 1},
    {L"UInt16", 16, 2},
    {L"UInt32", 32, 4},
    {L"Int8", 8, 1},
    {L"Int16", 16, 2},
    {L"Int32", 32, 4},
    {L"Float16", 16, 2},
    {L"Float32", 32, 4},
    {L"Double64", 64, 8},
    {L"Complex64", 64, 8},
    {L"Complex128", 128, 16},
    {L"RGB24", 24, 3},
    {L"RGBA32", 32, 4},
}};

const PixelTypeFacts& FactsOf(PixelType type) noexcept
{
    const auto value = static_cast<uint32_t>(type);
    return pixelTypes[value < pixelTypes.size() ? value : 0];
}

} // namespace

std::wstring PixelTypeName(PixelType type)
{
    return FactsOf(type).name;
}

uint32_t BitsPerPixel(PixelType type) noexcept
{
    return FactsOf(type).bits;
}

uint32_t BytesPerPixel(PixelType type) noexcept
{
    return FactsOf(type).bytes;
}

} // namespace Tav::Imaging::RawImage
