// The properties that the shell gets: of files, and of facts that no reader gives.

#include "OpenedFile.h"
#include "support/files/BinFile.h"

#include "formats/Identification.h"
#include "metadata/Metadata.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <optional>

using namespace Tav::Imaging::RawImage;

namespace {

/// A property, in the form in which two of them can be compared.
struct Property
{
    VARTYPE type = VT_EMPTY;
    uint32_t number = 0;
    std::wstring text = {};

    bool operator==(const Property&) const = default;
};

Property Number(uint32_t number)
{
    return {VT_UI4, number};
}

Property Text(const std::wstring& text)
{
    // The text ends with its first zero.
    return {VT_LPWSTR, 0, text.substr(0, text.find(L'\0'))};
}

std::wstring DimensionsOf(const RawImageBase& reader)
{
    const std::wstring size = std::to_wstring(reader.width) + L" x " + std::to_wstring(reader.height);
    return reader.frameCount > 1 ? size + L" x " + std::to_wstring(reader.frameCount) : size;
}

Property Expected(const RawImageBase* reader, MetadataProperty property)
{
    if (!reader)
        return property == MetadataProperty::Software ? Text(L"") : Property{};
    switch (property)
    {
    case MetadataProperty::Width:
        return Number(reader->width);
    case MetadataProperty::Height:
        return Number(reader->height);
    case MetadataProperty::Dimensions:
        return Text(DimensionsOf(*reader));
    case MetadataProperty::FrameCount:
        return Number(reader->frameCount);
    case MetadataProperty::BitDepth:
        return Number(BitsPerPixel(reader->pixelType));
    case MetadataProperty::PixelFormat:
        return Text(PixelTypeName(reader->pixelType) +
                    std::wstring{reader->byteOrder == ByteOrder::BigEndian ? L" (Big endian)" : L""});
    case MetadataProperty::Software:
        return Text(reader->software);
    case MetadataProperty::FormatDetails:
        return reader->formatDetails.empty() ? Property{} : Text(reader->formatDetails);
    case MetadataProperty::Count:
        break;
    }
    return {};
}

void RequireProperties(const RawImage& image)
{
    Metadata metadata;
    metadata.FillFromImage(image);
    // One more than there are: an unknown property has no value.
    for (size_t i = 0; i <= metadataPropertyCount; ++i)
    {
        const auto property = static_cast<MetadataProperty>(i);
        PROPVARIANT variant;
        const bool hasValue = metadata.Get(property, variant);
        Property actual{variant.vt};
        if (variant.vt == VT_UI4)
            actual.number = variant.ulVal;
        else if (variant.vt == VT_LPWSTR)
            actual.text = variant.pwszVal;
        PropVariantClear(&variant);
        Require(hasValue == (actual.type != VT_EMPTY));
        Require(actual == Expected(image.Reader(), property));
    }
}

/// The properties of a file, as the shell asks for them. Those of HDF5 files wait for the library.
void ReadFileProperties(std::span<const uint8_t> file)
{
    if (file.size() < identificationBytes || Identify(file.first<identificationBytes>()) == Identity::Hdf)
        return;
    RequireProperties(OpenedFile{file, readModeHeader}.image);
}

std::wstring SomeText(FuzzedDataProvider& input)
{
    std::wstring text;
    for (auto length = input.ConsumeIntegral<uint8_t>(); length > 0 && input.remaining_bytes() > 0; --length)
        text.push_back(input.ConsumeIntegral<uint16_t>());
    return text;
}

/// The properties of any facts, as a reader could state them.
void ReadAnyProperties(std::span<const uint8_t> data)
{
    static const Bytes bin = BinFile().Size(8, 8).Samples(1, Bytes(64)).Build();
    TestStream stream{bin};
    RawImage image;
    Require(image.Open(&stream, readModeHeader, 0));
    RawImageBase* const reader = image.Reader();

    FuzzedDataProvider input{data.data(), data.size()};
    reader->width = input.ConsumeIntegral<uint32_t>();
    reader->height = input.ConsumeIntegral<uint32_t>();
    reader->frameCount = input.ConsumeIntegral<uint32_t>();
    reader->pixelType = static_cast<PixelType>(input.ConsumeIntegral<uint8_t>());
    reader->byteOrder = input.ConsumeBool() ? ByteOrder::BigEndian : ByteOrder::LittleEndian;
    reader->software = SomeText(input);
    reader->formatDetails = SomeText(input);
    RequireProperties(image);
}

} // namespace

std::vector<Target> PropertyTargets()
{
    return {{"properties", ReadFileProperties}, {"facts", ReadAnyProperties}};
}
