#include "support/files/MrcFile.h"
#include "support/gray/GrayStack.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/support/ImportHook.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <propidl.h>

#include <string>
#include <vector>

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Lines = std::vector<std::string>;
using Values = std::array<PropertyValue, 8>;

const PropertyValue nothing;

/// A file and what the shell shows of it, in the order of the keys served.
struct DescribedFile
{
    const char* name;
    std::vector<uint8_t> content;
    Values values;
    Lines lines;
};

std::vector<uint8_t> Zeros(size_t count)
{
    return std::vector<uint8_t>(count);
}

/// A stack that an acquisition program has written.
std::vector<uint8_t> AcquiredStack()
{
    return MrcFile()
        .Size(4, 3, 5)
        .Mode(6)
        .Version(20140)
        .ExtendedHeader("TAV ", AcquisitionHeader(5, "TAV Ardix", "2.10"))
        .Samples(Zeros(120))
        .Build();
}

/// A picture of two 4-bit pixels to the byte, which its writer calls bytes.
std::vector<uint8_t> PackedPicture()
{
    return MrcFile().Size(2, 2, 1).Mode(0).Labels("SerialEM: 4 bits packed").Samples(Zeros(4)).Build();
}

const Values acquiredValues = {4ul,       3ul,           L"4 x 3 x 5", 5ul,
                               L"UInt16", L"Ardix 2.10", 16ul,         L"MRC2014 Mode 6"};
const Values packedValues = {4ul, 2ul, L"4 x 2", 1ul, L"UInt4", L"SerialEM", 4ul, L"MRC Mode 0"};

const std::vector<DescribedFile>& DescribedFiles()
{
    static const std::vector<DescribedFile> files = {
        {"stack with its writer and version", AcquiredStack(), acquiredValues, {}},
        {"packed picture",
         PackedPicture(),
         packedValues,
         {"[Lumora] MRC: Non-standard 4-bit pixel format detected while mode 0 is specified"}},
        {"big-endian picture",
         MrcFile().Size(2, 2, 1).Mode(2).Order(MrcFile::ByteOrder::BigEndian).Samples(Zeros(16)).Build(),
         {2ul, 2ul, L"2 x 2", 1ul, L"Float32 (Big endian)", L"Gatan Digital Micrograph", 32ul, L"MRC Mode 2"},
         {}},
        {"color picture by an unknown writer",
         MrcFile().Size(2, 1, 1).Mode(16).Samples(Zeros(6)).Build(),
         {2ul, 1ul, L"2 x 1", 1ul, L"RGB24", L"", 24ul, L"MRC Mode 16"},
         {}},
        {"stack of 4-bit pictures",
         MrcFile().Size(6, 4, 3).Mode(101).Samples(Zeros(36)).Build(),
         {6ul, 4ul, L"6 x 4 x 3", 3ul, L"UInt4", L"", 4ul, L"MRC Mode 101"},
         {"[Lumora] MRC: Non-standard mode 101 detected (4-bit pixel format)"}},
        {"signed bytes",
         MrcFile().Size(1, 9, 2).Mode(0).Samples(Zeros(18)).Build(),
         {1ul, 9ul, L"1 x 9 x 2", 2ul, L"Int8", L"", 8ul, L"MRC Mode 0"},
         {}},
        {"half floats with a writer that tells no version",
         MrcFile()
             .Size(1, 1, 1)
             .Mode(12)
             .Version(20141)
             .ExtendedHeader("TAV1", AcquisitionHeader(1, "Some Program", "7"))
             .Samples(Zeros(2))
             .Build(),
         {1ul, 1ul, L"1 x 1", 1ul, L"Float16", L"Some Program", 16ul, L"MRC2014 Mode 12"},
         {}},
        {"stack that holds less than it promises",
         MrcFile().Size(2, 2, 7).Mode(1).Samples(Zeros(16)).Build(),
         {2ul, 2ul, L"2 x 2 x 2", 2ul, L"Int16", L"", 16ul, L"MRC Mode 1"},
         {"[Lumora] MRC: The file contains less frames than specified in the header"}},
    };
    return files;
}

void* WINAPI RefuseMemory(SIZE_T)
{
    return nullptr;
}

} // namespace

TEST(PropertyValues, DescribeTheFile)
{
    DiagnosticLines diagnostics;
    for (const DescribedFile& file : DescribedFiles())
    {
        SCOPED_TRACE(file.name);
        TestStream stream{file.content};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        EXPECT_EQ(Initialize(store, &stream), S_OK);
        EXPECT_EQ(diagnostics.Take(), file.lines);
        EXPECT_EQ(stream.references, 0u) << "the stream is not kept";
        EXPECT_EQ(ValuesOf(store), file.values);
        EXPECT_EQ(ValuesOf(store), file.values) << "and can be asked for again";
        EXPECT_THAT(diagnostics.Take(), IsEmpty());
    }
}

TEST(PropertyValues, AreMissingBeforeThereIsAStream)
{
    DiagnosticLines diagnostics;
    EXPECT_THAT(ValuesOf(NewPropertyStore()), Each(nothing));
    EXPECT_THAT(diagnostics.Take(), IsEmpty());
}

TEST(PropertyValues, OutliveTheStream)
{
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    {
        TestStream stream{AcquiredStack()};
        EXPECT_EQ(Initialize(store, &stream), S_OK);
    }
    EXPECT_EQ(ValuesOf(store), acquiredValues);
}

TEST(PropertyValues, NeedNoPixels)
{
    // Two sections of 4 MiB. What the readers look at is the file's start, 4 MiB at a time.
    TestStream stream{MrcFile().Size(2048, 2048, 2).Mode(0).Samples(Zeros(size_t{8} << 20)).Build()};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    EXPECT_EQ(ValueOf(store, servedKeys[2]), PropertyValue{L"2048 x 2048 x 2"});
    EXPECT_EQ(stream.bytesRead, 64u + 0x400000);
    EXPECT_EQ(stream.readCalls, 2u);
}

TEST(PropertyValues, AreTheSameUnderEveryAccessMode)
{
    for (const DWORD mode : {DWORD{STGM_READ}, DWORD{STGM_READWRITE}, DWORD{STGM_WRITE}, DWORD{0xFFFFFFFF}})
    {
        TestStream stream{AcquiredStack()};
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        EXPECT_EQ(Initialize(store, &stream, mode), S_OK);
        EXPECT_EQ(ValuesOf(store), acquiredValues);
    }
}

TEST(PropertyValues, AreOverwrittenByASecondStreamAsFarAsItTellsThem)
{
    TestStream packedStream{PackedPicture()};
    TestStream plainStream{GrayStack(2)};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &packedStream), S_OK);
    EXPECT_EQ(ValuesOf(store), packedValues);
    EXPECT_EQ(Initialize(store, &plainStream), S_OK);
    EXPECT_EQ(ValuesOf(store),
              (Values{4ul, 2ul, L"4 x 2 x 2", 2ul, L"UInt16", L"SerialEM", 16ul, L"MRC Mode 6"}))
        << "the second file does not tell its writer";
    EXPECT_EQ(plainStream.references, 0u);
}

TEST(PropertyValues, StayAsTheyAreWhenASecondStreamCannotBeRead)
{
    TestStream stream{AcquiredStack()};
    TestStream noiseStream{std::vector<uint8_t>(100, 'x')};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    EXPECT_EQ(Initialize(store, &noiseStream), E_FAIL);
    EXPECT_EQ(ValuesOf(store), acquiredValues);
    EXPECT_EQ(Initialize(store, nullptr), E_INVALIDARG);
    EXPECT_EQ(ValuesOf(store), acquiredValues);
}

TEST(PropertyValues, AreRefusedForOtherKeys)
{
    TestStream stream{AcquiredStack()};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    const GUID imageSummary = servedKeys[0].fmtid;
    const GUID mediaSummary = servedKeys[4].fmtid;
    const GUID documentSummary = servedKeys[7].fmtid;
    for (const PROPERTYKEY& key :
         {PROPERTYKEY{imageSummary, 5}, PROPERTYKEY{imageSummary, 6}, PROPERTYKEY{imageSummary, 27},
          PROPERTYKEY{imageSummary, 0}, PROPERTYKEY{mediaSummary, 3}, PROPERTYKEY{mediaSummary, 36},
          PROPERTYKEY{mediaSummary, 7}, PROPERTYKEY{documentSummary, 7}, PROPERTYKEY{documentSummary, 3},
          PROPERTYKEY{GUID{}, 3}, PROPERTYKEY{GUID{}, 0}})
    {
        PROPVARIANT value;
        PropVariantInit(&value);
        EXPECT_EQ(store->GetValue(key, &value), E_INVALIDARG) << key.pid;
        EXPECT_EQ(value.vt, VT_EMPTY);
    }
}

TEST(PropertyValues, BelongToTheCaller)
{
    TestStream stream{AcquiredStack()};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    PROPVARIANT first;
    PROPVARIANT second;
    ASSERT_EQ(store->GetValue(servedKeys[5], &first), S_OK);
    ASSERT_EQ(store->GetValue(servedKeys[5], &second), S_OK);
    ASSERT_EQ(first.vt, VT_LPWSTR);
    EXPECT_NE(first.pwszVal, second.pwszVal);
    first.pwszVal[0] = L'X';
    EXPECT_EQ(PropVariantClear(&first), S_OK);
    EXPECT_STREQ(second.pwszVal, L"Ardix 2.10");
    EXPECT_EQ(PropVariantClear(&second), S_OK);
}

TEST(PropertyValues, AreRefusedWhenThereIsNoMemoryForATextToGiveAway)
{
    TestStream stream{AcquiredStack()};
    const ComPtr<IPropertyStore> store = NewPropertyStore();
    EXPECT_EQ(Initialize(store, &stream), S_OK);
    {
        const ImportHook hook{LumoraModule::Shared().handle, "CoTaskMemAlloc", RefuseMemory};
        EXPECT_THAT(ValuesOf(store),
                    ElementsAre(PropertyValue{4ul}, PropertyValue{3ul}, nothing, PropertyValue{5ul}, nothing,
                                nothing, PropertyValue{16ul}, nothing));
    }
    EXPECT_EQ(ValuesOf(store), acquiredValues);
}
