#include "support/gray/GrayStack.h"
#include "support/streams/DiagnosticLines.h"
#include "windows/clients/DecoderClient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <list>
#include <string>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

/// A file that is not for this decoder, and what it says of it.
struct RefusedFile
{
    const char* name;
    std::vector<uint8_t> content;
    Lines lines;
};

/// Some bytes of a file's start, followed by 0xEE.
std::vector<uint8_t> Start(std::initializer_list<uint8_t> start)
{
    std::vector<uint8_t> content(128, 0xEE);
    std::copy(start.begin(), start.end(), content.begin());
    return content;
}

/// An Enhanced Metafile: record type 1, record size, bounds, and the signature at byte 40.
std::vector<uint8_t> EnhancedMetafile()
{
    ByteWriter file;
    file.Put(uint32_t{1}).Put(uint32_t{108}).PadTo(40).Text(" EMF").PadTo(128);
    return file.bytes;
}

std::vector<uint8_t> Shortened(std::vector<uint8_t> content, size_t length)
{
    content.resize(length);
    return content;
}

const std::vector<RefusedFile>& RefusedFiles()
{
    const Lines unknown = {"[Lumora] Could not identify the file format"};
    const Lines nothing;
    static const std::vector<RefusedFile> files = {
        {"noise", Start({}), unknown},
        {"PNG", Start({0x89, 'P', 'N', 'G', 13, 10, 26, 10}), unknown},
        {"GIF", Start({'G', 'I', 'F', '8', '9', 'a'}), unknown},
        {"BMP", Start({'B', 'M', 0x36}), {"[Lumora] Unsupported bitmap file format detected"}},
        {"JPEG", Start({0xFF, 0xD8, 0xFF, 0xE0}), {"[Lumora] Unsupported JPEG file format detected"}},
        {"little-endian TIFF",
         Start({'I', 'I', '*', 0, 8, 0, 0, 0}),
         {"[Lumora] Unsupported TIFF file format (little-endian) detected"}},
        {"big-endian TIFF",
         Start({'M', 'M', 0, '*', 0, 0, 0, 8}),
         {"[Lumora] Unsupported TIFF file format (big-endian) detected"}},
        {"big-endian BigTIFF", Start({'M', 'M', 0, '+', 0, 8, 0, 0}), unknown},
        {"Enhanced Metafile",
         EnhancedMetafile(),
         {"[Lumora] Load request for not supported Enhanced MetaFile (EMF)"}},
        {"no bytes", {}, nothing},
        {"one byte less than is needed to tell", Shortened(GrayStack(1), 63), nothing},
        {"a header of zeros", std::vector<uint8_t>(64), nothing},
        {"MRC header alone",
         Shortened(GrayStack(1), 1024),
         {"[Lumora] MRC: No complete frame is present in the file"}},
        {"MRC file cut in its only section",
         Shortened(GrayStack(1), 1024 + 15),
         {"[Lumora] MRC: No complete frame is present in the file"}},
        {"MRC file without sections",
         MrcFile().Size(4, 2, 0).Mode(6).Build(),
         {"[Lumora] MRC: Frame index is out of range"}},
    };
    return files;
}

} // namespace

TEST(DecoderRefusal, IsAWrongStateWithItsReasonForTheDebugger)
{
    DiagnosticLines diagnostics;
    for (const RefusedFile& file : RefusedFiles())
    {
        SCOPED_TRACE(file.name);
        TestStream stream{file.content};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        EXPECT_EQ(Initialize(decoder, stream), WINCODEC_ERR_WRONGSTATE);
        EXPECT_EQ(diagnostics.Take(), file.lines);
        EXPECT_EQ(FrameCount(decoder), 1u);
        EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);
        decoder.Reset();
        EXPECT_EQ(stream.references, 0u);
    }
}

TEST(DecoderRefusal, LeavesTheDecoderReadyForTheNextStream)
{
    // The decoder keeps the last stream, so the streams outlive it.
    std::list<TestStream> streams;
    const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
    for (const RefusedFile& file : RefusedFiles())
    {
        SCOPED_TRACE(file.name);
        EXPECT_EQ(Initialize(decoder, streams.emplace_back(file.content)), WINCODEC_ERR_WRONGSTATE);
    }
    EXPECT_EQ(Initialize(decoder, streams.emplace_back(GrayStack(1))), S_OK);
    EXPECT_EQ(Picture(Frame(decoder, 0)), grayPictures[0]);
    for (const TestStream& stream : streams)
        EXPECT_EQ(stream.references, &stream == &streams.back() ? 1u : 0u);
}
