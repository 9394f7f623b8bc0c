#pragma once

#include "support/FileBytes.h"
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
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frameCount = 0;
    std::string pixelType;
    /// The words that only one format's files have.
    std::istringstream rest;
};

/// Every file of the folder, whose name ends with a slash.
inline std::vector<WrittenFile> ReadManifest(const std::string& folder)
{
    std::ifstream manifest{folder + "manifest"};
    std::vector<WrittenFile> files;
    for (std::string line; std::getline(manifest, line);)
    {
        WrittenFile file;
        file.rest.str(line);
        std::string outcome;
        file.rest >> file.name >> outcome;
        file.opens = outcome == "opens";
        if (file.opens)
            file.rest >> file.width >> file.height >> file.frameCount >> file.pixelType;
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
            .width = file.width,
            .height = file.height,
            .bytes = std::move(samples),
            .byteOrder = reader.byteOrder,
            .flipVertical = reader.flipVertical,
            .fileType = reader.fileType};
}

/// The frame's samples as the writer had them, in the file NAME.raw, with what the display depends on.
inline StoredFrame WrittenFrame(const std::string& folder, const WrittenFile& file,
                                const Tav::Imaging::RawImage::RawImageBase& reader, uint32_t frameIndex)
{
    const Bytes samples = FileBytes(folder + file.name + ".raw");
    EXPECT_EQ(samples.size() % file.frameCount, 0U);
    const size_t frameBytes = samples.size() / file.frameCount;
    const auto first = samples.begin() + static_cast<ptrdiff_t>(frameIndex * frameBytes);
    return WrittenFrame(file, reader, {first, first + static_cast<ptrdiff_t>(frameBytes)});
}
