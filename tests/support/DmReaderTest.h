#pragma once

#include "support/FileFacts.h"
#include "support/files/DmFile.h"
#include "support/files/DmImages.h"
#include "support/streams/FileRead.h"

#include "formats/dm/RawImageDm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

/// The facts that the reader of either version finds; without an image, those that it knows of every file.
template <typename Reader>
FileFacts DmFacts(Tav::Imaging::RawImage::PixelType pixelType = {}, uint32_t width = 0, uint32_t height = 0,
                  uint32_t frameCount = 0)
{
    using namespace Tav::Imaging::RawImage;
    constexpr auto fileType = std::is_same_v<Reader, RawImageDm4> ? FileType::Dm4 : FileType::Dm3;
    return {fileType, pixelType, width, height, frameCount, false, L"Gatan Digital Micrograph"};
}

/// What the reader of either version has to do alike.
template <typename Reader>
class DmReader : public testing::Test
{
protected:
    static constexpr DmLayout layout{std::is_same_v<Reader, Tav::Imaging::RawImage::RawImageDm4> ? 4U : 3U};

    static DmTags Tags() { return DmTags{layout}; }

    static DmFile File(const DmTags& root) { return DmFile{layout}.Root(root); }

    /// A file that holds these images and nothing else.
    static Bytes FileOf(std::initializer_list<DmImage> images)
    {
        DmTags list{layout};
        for (const DmImage& image : images)
            list.Image(image);
        return File(Tags().Group("ImageList", list)).Build();
    }

    /// A line as this version's reader writes it.
    static std::string Line(const std::string& message)
    {
        return (layout.version == 4 ? "[Lumora] DM4: " : "[Lumora] DM3: ") + message;
    }
};

struct DmReaderNames
{
    template <typename Reader>
    static std::string GetName(int /*index*/)
    {
        return std::is_same_v<Reader, Tav::Imaging::RawImage::RawImageDm4> ? "Dm4" : "Dm3";
    }
};

using DmReaders = testing::Types<Tav::Imaging::RawImage::RawImageDm3, Tav::Imaging::RawImage::RawImageDm4>;
TYPED_TEST_SUITE(DmReader, DmReaders, DmReaderNames);
