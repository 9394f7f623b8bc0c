#pragma once

#include "support/FileBytes.h"
#include "support/FileFacts.h"
#include "support/display/ReferenceDisplay.h"

#include "core/RawImageBase.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

/// What an independent writer knows of a file that it has written, from its line in the folder's manifest.
struct WrittenFile
{
    std::string name;
    bool opens = false;
    /// Those that are the same for every format: the pixel type, the size and the number of frames.
    FileFacts facts;
    /// The words that only one format's files have.
    std::istringstream rest;
};

/// The pixel type of that name; Unknown when there is none.
inline Tav::Imaging::RawImage::PixelType PixelTypeNamed(const std::string& name)
{
    using namespace Tav::Imaging::RawImage;
    for (uint32_t number = 1; BitsPerPixel(static_cast<PixelType>(number)) != 0; ++number)
        if (PixelTypeName(static_cast<PixelType>(number)) == std::wstring(name.begin(), name.end()))
            return static_cast<PixelType>(number);
    return PixelType::Unknown;
}

/// Every file of the folder.
inline std::vector<WrittenFile> ReadManifest(const std::filesystem::path& folder)
{
    std::ifstream manifest{folder / "manifest"};
    std::vector<WrittenFile> files;
    for (std::string line; std::getline(manifest, line);)
    {
        WrittenFile file;
        file.rest.str(line);
        std::string outcome;
        file.rest >> file.name >> outcome;
        file.opens = outcome == "opens";
        std::string pixelType;
        if (file.opens)
            file.rest >> file.facts.width >> file.facts.height >> file.facts.frameCount >> pixelType;
        file.facts.pixelType = PixelTypeNamed(pixelType);
        EXPECT_TRUE(file.rest && (file.opens || outcome == "refused")) << line;
        files.push_back(std::move(file));
    }
    return files;
}

/// A frame that begins where the samples do, with what its display depends on.
inline StoredFrame WrittenFrame(const WrittenFile& file, const Tav::Imaging::RawImage::RawImageBase& reader,
                                Bytes samples)
{
    return {.pixelType = reader.pixelType,
            .width = file.facts.width,
            .height = file.facts.height,
            .bytes = std::move(samples),
            .byteOrder = reader.byteOrder,
            .flipVertical = reader.flipVertical,
            .fileType = reader.fileType};
}

/// The frame's samples as the writer had them, in the file NAME.raw, with what the display depends on.
inline StoredFrame WrittenFrame(const std::filesystem::path& folder, const WrittenFile& file,
                                const Tav::Imaging::RawImage::RawImageBase& reader, uint32_t frameIndex)
{
    const Bytes samples = FileBytes(folder / (file.name + ".raw"));
    EXPECT_EQ(samples.size() % file.facts.frameCount, 0U);
    const size_t frameBytes = samples.size() / file.facts.frameCount;
    const auto first = samples.begin() + static_cast<ptrdiff_t>(frameIndex * frameBytes);
    return WrittenFrame(file, reader, {first, first + static_cast<ptrdiff_t>(frameBytes)});
}
