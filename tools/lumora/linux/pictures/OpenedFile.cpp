#include "lumora/pictures/OpenedFile.h"

#include "core/RawImage.h"
#include "core/display/DisplayPicture.h"
#include "lumora/console/Failure.h"
#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"
#include "lumora/pictures/ClearedVariant.h"
#include "metadata/Metadata.h"
#include "registration/Formats.h"
#include "shared/linux/DisplayedPicture.h"
#include "shared/linux/FileStream.h"

#include <algorithm>
#include <system_error>

namespace Lumora {

using namespace Tav::Imaging::RawImage;

namespace {

std::unique_ptr<FileStream> StreamOf(const std::wstring& path, const wchar_t* what)
try
{
    return std::make_unique<FileStream>(BytesOfName(path));
}
catch (const std::system_error& error)
{
    throw Failure{std::wstring(what) + L": " + DescribeError(error.code().value())};
}

/// Whether the first bytes are those of a format. Otherwise no decoder is asked, as Windows does it, so that
/// the failure is told in the same words.
bool IsKnown(FileStream& stream)
{
    static const std::vector<HeaderPattern> patterns = HeaderPatterns();
    std::array<uint8_t, identificationBytes> header = {};
    ULONG count = 0;
    return stream.Read(header.data(), identificationBytes, &count) == S_OK &&
           std::ranges::any_of(patterns,
                               [&](const HeaderPattern& pattern) { return pattern.Matches(header); });
}

} // namespace

struct OpenedFile::Means
{
    /// Decodes a frame. Returns false if the decoder has refused it.
    bool Decode(uint32_t index)
    {
        RawImage image;
        if (!image.Open(stream.get(), readModeFrame, index))
            return false;
        frameCount = image.Reader()->frameCount;
        decoded = std::make_shared<DisplayPicture>(TakeDisplayPicture(*image.Reader()));
        decodedIndex = index;
        return true;
    }

    std::unique_ptr<FileStream> stream;
    uint32_t frameCount = 0;
    /// The last frame that was decoded.
    std::shared_ptr<const DisplayPicture> decoded;
    uint32_t decodedIndex = 0;
};

OpenedFile::OpenedFile(Imaging&, const std::wstring& path) : means(std::make_unique<Means>())
{
    means->stream = StreamOf(path, cannotReadPicture);
    if (!IsKnown(*means->stream))
        throw Failure{std::wstring(cannotReadPicture) + L": no codec knows the file"};
    if (!means->Decode(0))
        throw Failure{std::wstring(cannotReadPicture) + L": the decoder refused the file"};
}

OpenedFile::~OpenedFile() = default;

uint32_t OpenedFile::FrameCount() const
{
    return means->frameCount;
}

std::unique_ptr<Picture> OpenedFile::Frame(uint32_t index) const
{
    if (index != means->decodedIndex && !means->Decode(index))
        throw Failure{L"cannot decode the frame: the decoder refused the file"};
    return std::make_unique<DisplayedPicture>(means->decoded);
}

FileProperties ReadProperties(Imaging&, const std::wstring& path)
{
    const std::unique_ptr<FileStream> stream = StreamOf(path, cannotReadProperties);
    RawImage image;
    if (!OpenForMetadata(image, stream.get()))
        throw Failure{std::wstring(cannotReadProperties) + L": the operation failed"};
    Metadata metadata;
    metadata.FillFromImage(image);
    FileProperties properties;
    for (const PropertyName& property : propertyNames)
    {
        ClearedVariant value;
        if (metadata.Get(property.property, value.variant))
            properties[property.property] = value.Value();
    }
    return properties;
}

} // namespace Lumora
