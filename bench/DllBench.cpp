// Measures the DLL as its hosts use it. Under Wine this tells what the DLL adds to the native figures.

#include "Micrograph.h"
#include "support/files/MrcFile.h"
#include "support/streams/TestStream.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/clients/TemporaryFolder.h"

#include <shlwapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

using Tav::Imaging::RawImage::PixelType;

namespace {

/// The milliseconds that the quickest of many runs takes.
template <typename Run>
double Milliseconds(Run run)
{
    using Clock = std::chrono::steady_clock;
    double best = 1e9;
    const auto end = Clock::now() + std::chrono::seconds(2);
    while (Clock::now() < end)
    {
        const auto start = Clock::now();
        run();
        best = std::min(best, std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    return best;
}

std::vector<uint8_t> MrcStack(uint32_t mode, PixelType type, uint32_t edge)
{
    return MrcFile().Size(edge, edge, 1).Mode(mode).Samples(MicrographFrame(type, edge)).Build();
}

void MeasureFrame(const char* name, uint32_t mode, PixelType type, uint32_t edge)
{
    TestStream stream{MrcStack(mode, type, edge)};
    const double time = Milliseconds([&] { return Frame(NewDecoder(stream), 0); });
    std::printf("%-40s %8.2f ms\n", name, time);
}

/// What the system takes for the memory of a stored frame alone.
void MeasureFreshMemory(const char* name, size_t bytes)
{
    const double time = Milliseconds([&] {
        void* const pages = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        std::memset(pages, 1, bytes);
        VirtualFree(pages, 0, MEM_RELEASE);
    });
    std::printf("%-40s %8.2f ms\n", name, time);
}

} // namespace

int main()
{
    // First, before the heap has returned memory to the system.
    MeasureFrame("Frame/UInt16/192", 6, PixelType::UInt16, 192);
    MeasureFreshMemory("FreshMemory/UInt16/4096", size_t{2} * 4096 * 4096);
    MeasureFreshMemory("FreshMemory/Float32/4096", size_t{4} * 4096 * 4096);
    MeasureFrame("Frame/UInt16/4096", 6, PixelType::UInt16, 4096);
    MeasureFrame("Frame/Float32/4096", 2, PixelType::Float32, 4096);

    const TemporaryFolder folder;
    const std::filesystem::path file = folder.Write("large.mrc", MrcStack(6, PixelType::UInt16, 4096));
    const double time = Milliseconds([&] {
        ComPtr<IStream> stream;
        SHCreateStreamOnFileEx(file.c_str(), STGM_READ | STGM_SHARE_DENY_NONE, 0, FALSE, nullptr,
                               stream.Put());
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        Initialize(store, stream.Get());
        return ValuesOf(store);
    });
    std::printf("%-40s %8.2f ms\n", "Properties/UInt16/4096", time);
}
