#include "formats/hdf/HdfContents.h"
#include "support/files/Hdf5File.h"
#include "support/streams/DiagnosticLines.h"
#include "support/streams/TestStream.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>

#include <sys/syscall.h>
#include <unistd.h>

using namespace Tav::Imaging::RawImage;
using testing::ElementsAre;

namespace {

/// Which request for memory behind reserved addresses is refused, counted from 1; 0 for none.
int refusedRequest = 0;

} // namespace

// In this program the system can have no memory left.
extern "C" int mprotect(void* address, size_t length, int protection) noexcept
{
    if (refusedRequest > 0 && --refusedRequest == 0)
        return -1;
    return static_cast<int>(syscall(SYS_mprotect, address, length, protection));
}

namespace {

TEST(HdfMemory, MayRunOutWhereverTheSandboxGrows)
{
    const Bytes file =
        Hdf5File().AnyDataSet("/image", H5T_STD_U16LE, {2048, 2048}).Strings("/Version", {"text"}).Build();
    Bytes samples(2048 * 2048 * 2);
    int refused = 0;
    for (int request = 1;; ++request)
    {
        TestStream stream{file};
        HdfContents contents{&stream, file.size()};
        DiagnosticLines diagnostics;
        refusedRequest = request;
        try
        {
            if (contents.Open())
            {
                while (contents.GoToNextDataset())
                    static_cast<void>(contents.Examine());
                EXPECT_TRUE(contents.ReadString("Version"));
                EXPECT_TRUE(contents.ReadDataset("/image", PixelType::UInt16, samples));
            }
            else
            {
                EXPECT_THAT(diagnostics.Take(),
                            ElementsAre("[Lumora] HDF: Could not allocated enough memory"));
            }
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_EQ(refusedRequest, 0);
        }
        if (refusedRequest > 0)
            break;
        ++refused;
    }
    refusedRequest = 0;
    EXPECT_GE(refused, 4) << "its beginning, the file, the library's work and a band";
}

} // namespace
