#include "support/files/DmImages.h"
#include "support/gray/GrayFiles.h"
#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/support/ImportHook.h"
#include "windows/support/ModuleHeap.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace {

/// No call here makes so many requests; a test that reaches this number would never end.
constexpr uint32_t mostRequests = 10000;

const std::vector<std::string> storeCatches = {
    "[Lumora] Exception in PropertyStore::Initialize( IStream *pStream, DWORD grfMode )"};
const std::vector<std::string> valueCatches = {
    "[Lumora] Exception in Metadata::Get( const MetadataProperty prop, PROPVARIANT& variant )"};

/// Runs a scenario that lets go of all its objects, and expects the module to give back all memory. It runs
/// twice: what the first run leaves behind is the state of the run-time library.
void ExpectNothingKept(ModuleHeap& heap, const std::function<void()>& scenario)
{
    scenario();
    const size_t held = heap.BlocksHeld();
    scenario();
    EXPECT_EQ(heap.BlocksHeld(), held);
}

/// Runs a scenario again and again and lets another of its requests for memory fail each time, until it has
/// made all of them. The scenario refuses the request itself, when it has made ready what must not fail.
void ForEachRequest(ModuleHeap& heap, const std::function<void(uint32_t number)>& scenario)
{
    for (uint32_t number = 1; number < mostRequests; ++number)
    {
        SCOPED_TRACE(testing::Message() << "request " << number);
        bool refused = false;
        const auto refusing = [&] {
            scenario(number);
            refused = heap.HasRefused();
            heap.RefuseRequest(0);
        };
        ExpectNothingKept(heap, refusing);
        if (!refused)
        {
            EXPECT_GT(number, 1u) << "the call takes no memory at all";
            return;
        }
    }
    ADD_FAILURE() << "the requests come to no end";
}

/// What the decoder may say when memory ran out: the exception leaves it, or there is no frame.
void ExpectOutOfMemory(const Outcome& outcome)
{
    const Outcome exception{.exception = "bad_alloc"};
    const Outcome noFrame{.result = WINCODEC_ERR_WRONGSTATE};
    EXPECT_TRUE(outcome == exception || outcome == noFrame) << outcome;
}

} // namespace

TEST(Memory, MayRunOutAtEveryPointOfOpeningAFile)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    ForEachRequest(heap, [&heap](uint32_t number) {
        TestStream stream{GrayStack(2)};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        heap.RefuseRequest(number);
        const Outcome outcome = OutcomeOf([&] { return Initialize(decoder, stream); });
        EXPECT_EQ(stream.references, 1u);
        if (!heap.HasRefused())
        {
            EXPECT_EQ(outcome, Outcome{});
            return;
        }
        ExpectOutOfMemory(outcome);
        EXPECT_EQ(FrameRefusal(decoder, 0), WINCODEC_ERR_FRAMEMISSING);
        EXPECT_EQ(Initialize(decoder, stream), S_OK) << "memory has been found since";
        EXPECT_EQ(FrameCount(decoder), 2u);
        EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
        decoder.Reset();
        EXPECT_EQ(stream.references, 0u);
    });
}

TEST(Memory, MayRunOutAtEveryPointOfOpeningAFileOfAnyFormat)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    for (const GrayFile& file : GrayFiles())
    {
        SCOPED_TRACE(file.name);
        const auto open = [&](uint32_t number) {
            TestStream stream{file.content};
            const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
            heap.RefuseRequest(number);
            const Outcome outcome = OutcomeOf([&] { return Initialize(decoder, stream); });
            // A library can do without some of the memory that it would like to have.
            const bool opened = outcome.result == S_OK && outcome.exception.empty();
            EXPECT_TRUE(opened || heap.HasRefused()) << outcome;
            if (!opened)
            {
                EXPECT_EQ(Initialize(decoder, stream), S_OK) << "memory has been found since";
            }
            EXPECT_EQ(Picture(Frame(decoder, 0)), file.pictures[0]);
        };
        ForEachRequest(heap, open);
    }
}

/// Which request for whole pages is refused, counted from 1; 0 for none.
uint32_t refusedPages = 0;

void* WINAPI AllocatePages(void* address, SIZE_T bytes, DWORD kind, DWORD protection)
{
    if (refusedPages > 0 && --refusedPages == 0)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return VirtualAlloc(address, bytes, kind, protection);
}

/// A frame that is large enough for pages of its own.
GrayFile LargeGrayFile()
{
    constexpr uint32_t width = 2048;
    constexpr uint32_t height = 1024;
    GrayFile file{"large.mrc", {}, {{}}, L"", L"", width};
    ByteWriter samples;
    for (uint32_t i = 0; i < width * height; ++i)
    {
        const auto brightness = static_cast<uint8_t>(i);
        samples.Put(static_cast<uint16_t>(1000 + brightness));
        file.pictures[0].push_back(brightness);
    }
    file.content = MrcFile().Size(width, height, 1).Mode(6).Samples(samples.bytes).Build();
    return file;
}

/// Opens the file again and again, and each time refuses a later request for pages. Returns the number of
/// requests.
uint32_t RefuseEachRequestForPages(const GrayFile& file)
{
    for (uint32_t number = 1; number < mostRequests; ++number)
    {
        SCOPED_TRACE(testing::Message() << "request " << number);
        TestStream stream{file.content};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        {
            const ImportHook hook{LumoraModule::Shared().handle, "VirtualAlloc", AllocatePages};
            refusedPages = number;
            const Outcome outcome = OutcomeOf([&] { return Initialize(decoder, stream); });
            const bool wasRefused = refusedPages == 0;
            refusedPages = 0;
            if (!wasRefused)
            {
                EXPECT_EQ(outcome, Outcome{});
                return number - 1;
            }
            const Outcome exception{.exception = "bad_alloc"};
            const Outcome noImage{.result = WINCODEC_ERR_WRONGSTATE,
                                  .lines = {"[Lumora] HDF: Could not allocated enough memory",
                                            "[Lumora] HDF: Could not open file"}};
            EXPECT_TRUE(outcome == exception || outcome == noImage) << outcome;
        }
        EXPECT_EQ(Initialize(decoder, stream), S_OK) << "memory has been found since";
        EXPECT_EQ(Picture(Frame(decoder, 0)), file.pictures[0]);
    }
    return mostRequests;
}

TEST(Memory, MayRunOutWhereWholePagesAreAskedFor)
{
    // The memory in which an HDF5 file is read: its addresses, its beginning, and as it grows.
    const std::vector<GrayFile> files = GrayFiles();
    const auto found = std::ranges::find(files, "gray.h5", &GrayFile::name);
    ASSERT_NE(found, files.end());
    EXPECT_GE(RefuseEachRequestForPages(*found), 3U);

    EXPECT_EQ(RefuseEachRequestForPages(LargeGrayFile()), 1U);
}

// The run-time library has a state for the exceptions of each thread.
TEST(Memory, MayRunOutWhenANewThreadRefusesAFile)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    ForEachRequest(heap, [&heap](uint32_t number) {
        OnAnotherThread([&] {
            TestStream stream{GrayStack(2), {.failReadAt = 2}};
            const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
            heap.RefuseRequest(number);
            const Outcome outcome = OutcomeOf([&] { return Initialize(decoder, stream); });
            // An exception that finds no memory takes what the run-time library has set aside for it.
            const Outcome unreadable{.exception = "runtime_error: Could not read file"};
            if (outcome != unreadable)
            {
                EXPECT_TRUE(heap.HasRefused());
                ExpectOutOfMemory(outcome);
            }
        });
    });
}

TEST(Memory, MayRunOutAtEveryPointOfDecodingTheNextFrame)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    ForEachRequest(heap, [&heap](uint32_t number) {
        TestStream stream{GrayStack(2)};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder(stream);
        const ComPtr<IWICBitmapFrameDecode> first = Frame(decoder, 0);
        IWICBitmapFrameDecode* second = Untouchable<IWICBitmapFrameDecode>();
        heap.RefuseRequest(number);
        const Outcome outcome = OutcomeOf([&] { return decoder->GetFrame(1, &second); });
        if (!heap.HasRefused())
        {
            EXPECT_EQ(outcome, Outcome{});
            second->Release();
            return;
        }
        ExpectOutOfMemory(outcome);
        EXPECT_EQ(second, Untouchable<IWICBitmapFrameDecode>());
        EXPECT_EQ(stream.references, 1u);
        EXPECT_EQ(Frame(decoder, 0).Get(), first.Get()) << "the frame at hand stays";
        EXPECT_EQ(Picture(first), grayPictures[0]);
        EXPECT_EQ(Picture(Frame(decoder, 1)), grayPictures[1]);
    });
}

TEST(Memory, MayRunOutAtEveryPointOfReadingProperties)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    ForEachRequest(heap, [&heap](uint32_t number) {
        TestStream stream{GrayStack(3)};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        heap.RefuseRequest(number);
        const Outcome outcome = OutcomeOf([&] { return Initialize(store, &stream); });
        EXPECT_EQ(stream.references, 0u);
        if (!heap.HasRefused())
        {
            EXPECT_EQ(outcome, Outcome{});
            return;
        }
        EXPECT_EQ(outcome, (Outcome{.result = E_FAIL, .lines = storeCatches}));
        EXPECT_EQ(Initialize(store, &stream), S_OK);
        EXPECT_EQ(ValueOf(store, servedKeys[2]), PropertyValue{L"4 x 2 x 3"});
        EXPECT_EQ(ValueOf(store, servedKeys[7]), PropertyValue{L"MRC Mode 6"});
    });
}

TEST(Memory, MayRunOutAtEveryPointOfGivingAValue)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    TestStream stream{GrayStack(3)};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    // The text of the dimensions is put together when it is asked for.
    ForEachRequest(heap, [&](uint32_t number) {
        PropertyValue value;
        heap.RefuseRequest(number);
        const Outcome outcome = OutcomeOf([&] {
            value = ValueOf(store, servedKeys[2]);
            return S_OK;
        });
        if (!heap.HasRefused())
        {
            EXPECT_EQ(outcome, Outcome{});
            EXPECT_EQ(value, PropertyValue{L"4 x 2 x 3"});
            return;
        }
        EXPECT_EQ(outcome, (Outcome{.lines = valueCatches}));
        EXPECT_EQ(value, PropertyValue{});
    });
}

TEST(Memory, IsGivenBackWhereverTheStreamFails)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    // Two frames take eight questions for the size, and six seeks and reads.
    std::vector<StreamFaults> everyFault;
    for (uint32_t call = 1; call <= 8; ++call)
        everyFault.push_back({.failStatAt = call});
    for (uint32_t call = 1; call <= 6; ++call)
    {
        everyFault.push_back({.failSeekAt = call});
        everyFault.push_back({.failReadAt = call});
    }
    for (const StreamFaults& faults : everyFault)
    {
        SCOPED_TRACE(testing::Message()
                     << faults.failStatAt << ' ' << faults.failSeekAt << ' ' << faults.failReadAt);
        ExpectNothingKept(heap, [&faults] {
            TestStream stream{GrayStack(2), faults};
            const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
            const Outcome first = OutcomeOf([&] { return Initialize(decoder, stream); });
            ComPtr<IWICBitmapFrameDecode> frame;
            const Outcome second = OutcomeOf([&] { return decoder->GetFrame(1, frame.Put()); });
            EXPECT_FALSE(first == Outcome{} && second == Outcome{}) << "the fault was never met";
        });
        ExpectNothingKept(heap, [&faults] {
            TestStream stream{GrayStack(2), faults};
            const ComPtr<IPropertyStore> store = NewPropertyStore();
            const Outcome outcome = OutcomeOf([&] { return Initialize(store, &stream); });
            EXPECT_EQ(ValueOf(store, servedKeys[0]),
                      outcome == Outcome{} ? PropertyValue{4ul} : PropertyValue{});
        });
    }
}

TEST(Memory, IsASmallMultipleOfAFileOfManyTags)
{
    ModuleHeap heap{LumoraModule::Shared().handle};
    for (const DmLayout& layout : {DmLayout{3}, DmLayout{4}})
    {
        const DmTags rows[] = {DmTags{layout}.Group("a", DmTags{layout}), DmTags{layout}.UInt32("a", 1),
                               DmTags{layout}.Image(SmallNumberedImage(1))};
        for (const DmTags& tags : rows)
        {
            ByteWriter groups;
            while (groups.bytes.size() < (size_t{8} << 20))
                groups.Put(tags.AsGroup());
            const std::vector<uint8_t> file = DmFile{layout}.Content(groups.bytes).Build();
            TestStream stream{file};
            const ComPtr<IPropertyStore> store = NewPropertyStore();
            static_cast<void>(Initialize(store, &stream));
            // The list of tags grows by moving to a larger block, so this is most of what is held at once.
            EXPECT_LE(heap.LargestRequest(), 4 * file.size());
        }
    }
}

TEST(Memory, IsNotTakenForFramesThatAFileOnlyClaims)
{
    struct Claim
    {
        const char* name;
        std::vector<uint8_t> content;
        std::optional<uint64_t> claimedSize;
        Outcome outcome;
    };
    const Outcome noFrame{.result = WINCODEC_ERR_WRONGSTATE,
                          .lines = {"[Lumora] MRC: No complete frame is present in the file"}};
    const Outcome pixelsMissing{.result = WINCODEC_ERR_WRONGSTATE,
                                .lines = {"[Lumora] Failed to read the image data into memory"}};
    for (const Claim& claim : {
             Claim{"frame of 17 GB in a small file",
                   MrcFile().Size(65535, 65535, 1).Mode(2).Samples(std::vector<uint8_t>(1000)).Build(),
                   {},
                   noFrame},
             Claim{"frame of 1 GB in a small file",
                   MrcFile().Size(32768, 32767, 1).Mode(0).Samples(std::vector<uint8_t>(1000)).Build(),
                   {},
                   noFrame},
             // 4 x 32769 x 32769 is 2^32 + 262148: in 32 bits, the file seems to hold such a frame.
             Claim{"frame of 4 GB whose size wraps",
                   MrcFile().Size(32769, 32769, 1).Mode(2).Samples(std::vector<uint8_t>(262148)).Build(),
                   {},
                   pixelsMissing},
             Claim{"the same in a stream that claims to hold it",
                   MrcFile().Size(32769, 32769, 1).Mode(2).Samples(std::vector<uint8_t>(4 << 20)).Build(),
                   uint64_t{1} << 40, pixelsMissing},
         })
    {
        SCOPED_TRACE(claim.name);
        const ModuleHeap heap{LumoraModule::Shared().handle};
        TestStream stream{claim.content, {.reportedSize = claim.claimedSize}};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        EXPECT_EQ(OutcomeOf([&] { return Initialize(decoder, stream); }), claim.outcome);
        EXPECT_LE(heap.LargestRequest(), claim.content.size()) << "the window on the file is the largest";
    }
}
