#include "metadata/Metadata.h"

#include "core/Diagnostics.h"

#include <algorithm>

namespace Tav::Imaging::RawImage {

namespace {

/// True for a Digital Micrograph file whose first frame is a colour thumbnail. The image itself comes second.
bool BeginsWithThumbnail(const RawImageBase& reader)
{
    return (reader.fileType == FileType::Dm3 || reader.fileType == FileType::Dm4) && reader.frameCount >= 2 &&
           reader.pixelType == PixelType::RGBA32;
}

/// Sets the variant to a copy of the text, which PropVariantClear frees.
bool SetText(PROPVARIANT& variant, const std::wstring& text)
{
    const size_t length = text.size() + 1;
    auto* const copy = static_cast<wchar_t*>(CoTaskMemAlloc(length * sizeof(wchar_t)));
    if (!copy)
        return false;
    std::copy_n(text.c_str(), length, copy);
    variant.vt = VT_LPWSTR;
    variant.pwszVal = copy;
    return true;
}

} // namespace

bool OpenForMetadata(RawImage& image, IStream* stream)
{
    return image.Open(stream, readModeHeader, 0) &&
           (!BeginsWithThumbnail(*image.Reader()) || image.Open(stream, readModeHeader, 1));
}

void Metadata::FillFromImage(const RawImage& image)
{
    // An empty name of the software is a value: the writer is unknown. Empty details are no value.
    isSet[SoftwareFact] = true;
    const RawImageBase* const reader = image.Reader();
    if (!reader)
        return;

    SetValue(WidthFact, reader->width);
    SetValue(HeightFact, reader->height);
    SetValue(FrameCountFact, reader->frameCount);
    SetValue(BitDepthFact, BitsPerPixel(reader->pixelType));
    SetValue(PixelTypeFact, static_cast<uint32_t>(reader->pixelType));
    SetValue(ByteOrderFact, static_cast<uint32_t>(reader->byteOrder));
    if (!reader->software.empty())
        software = reader->software;
    if (!reader->formatDetails.empty())
    {
        formatDetails = reader->formatDetails;
        isSet[FormatDetailsFact] = true;
    }
}

bool Metadata::Get(MetadataProperty prop, PROPVARIANT& variant) const noexcept
try
{
    PropVariantInit(&variant);
    switch (prop)
    {
    case MetadataProperty::Width:
        return GetNumber(WidthFact, variant);
    case MetadataProperty::Height:
        return GetNumber(HeightFact, variant);
    case MetadataProperty::FrameCount:
        return GetNumber(FrameCountFact, variant);
    case MetadataProperty::BitDepth:
        return GetNumber(BitDepthFact, variant);
    case MetadataProperty::Dimensions:
        return isSet[WidthFact] && isSet[HeightFact] && SetText(variant, DimensionsText());
    case MetadataProperty::PixelFormat:
        return isSet[PixelTypeFact] && SetText(variant, PixelFormatText());
    case MetadataProperty::Software:
        return isSet[SoftwareFact] && SetText(variant, software);
    case MetadataProperty::FormatDetails:
        return isSet[FormatDetailsFact] && SetText(variant, formatDetails);
    case MetadataProperty::Count:
        break;
    }
    return false;
}
catch (...)
{
    WriteDiagnostic(L"Exception in Metadata::Get( const MetadataProperty prop, PROPVARIANT& variant )");
    return false;
}

void Metadata::SetValue(Fact fact, uint32_t value)
{
    values[fact] = value;
    isSet[fact] = true;
}

bool Metadata::GetNumber(Fact fact, PROPVARIANT& variant) const
{
    if (!isSet[fact])
        return false;
    variant.vt = VT_UI4;
    variant.ulVal = values[fact];
    return true;
}

std::wstring Metadata::DimensionsText() const
{
    std::wstring text = std::to_wstring(values[WidthFact]) + L" x " + std::to_wstring(values[HeightFact]);
    if (isSet[FrameCountFact] && values[FrameCountFact] > 1)
        text += L" x " + std::to_wstring(values[FrameCountFact]);
    return text;
}

std::wstring Metadata::PixelFormatText() const
{
    std::wstring text = PixelTypeName(static_cast<PixelType>(values[PixelTypeFact]));
    if (isSet[ByteOrderFact] && static_cast<ByteOrder>(values[ByteOrderFact]) == ByteOrder::BigEndian)
        text += L" (Big endian)";
    return text;
}

} // namespace Tav::Imaging::RawImage
