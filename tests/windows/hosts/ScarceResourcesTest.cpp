#include "support/gray/GrayStack.h"
#include "windows/clients/DecoderClient.h"
#include "windows/clients/LumoraModule.h"
#include "windows/clients/Outcome.h"
#include "windows/clients/PropertyStoreClient.h"
#include "windows/hosts/SampleFiles.h"
#include "windows/support/ImportHook.h"
#include "windows/support/OtherThread.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstdlib>
#include <string>
#include <vector>

// What a process lacks cannot be used up in a test: that takes millions of handles, and Wine needs a byte for
// each page of the addresses. So the module is refused what a process that lacks it would be refused.

namespace {

template <typename Result>
Result Refused(DWORD error)
{
    SetLastError(error);
    return {};
}

HANDLE WINAPI NoEvent(SECURITY_ATTRIBUTES*, BOOL, BOOL, const char*)
{
    return Refused<HANDLE>(ERROR_NO_SYSTEM_RESOURCES);
}

HANDLE WINAPI NoSemaphore(SECURITY_ATTRIBUTES*, LONG, LONG, const char*)
{
    return Refused<HANDLE>(ERROR_NO_SYSTEM_RESOURCES);
}

HANDLE WINAPI NoNewMutex(SECURITY_ATTRIBUTES*, BOOL, const wchar_t*)
{
    return Refused<HANDLE>(ERROR_NO_SYSTEM_RESOURCES);
}

HANDLE WINAPI NoMutex(DWORD, BOOL, const wchar_t*)
{
    return Refused<HANDLE>(ERROR_NO_SYSTEM_RESOURCES);
}

BOOL WINAPI NoDuplicate(HANDLE, HANDLE, HANDLE, HANDLE*, DWORD, BOOL, DWORD)
{
    return Refused<BOOL>(ERROR_NO_SYSTEM_RESOURCES);
}

/// While this lives, the module can open no handle.
struct NoHandles
{
    HMODULE module = LumoraModule::Shared().handle;
    ImportHook events{module, "CreateEventA", NoEvent};
    ImportHook semaphores{module, "CreateSemaphoreA", NoSemaphore};
    ImportHook newMutexes{module, "CreateMutexW", NoNewMutex};
    ImportHook mutexes{module, "OpenMutexW", NoMutex};
    ImportHook duplicates{module, "DuplicateHandle", NoDuplicate};
};

/// The heap of a process without free addresses still has room for small blocks.
constexpr size_t smallBlock = 0x4000;

void* WINAPI NoPages(void*, SIZE_T, DWORD, DWORD)
{
    return Refused<void*>(ERROR_NOT_ENOUGH_MEMORY);
}

void* SmallBlock(size_t bytes)
{
    return bytes <= smallBlock ? std::malloc(bytes) : nullptr;
}

void* SmallZeroedBlock(size_t count, size_t bytes)
{
    return count * bytes <= smallBlock ? std::calloc(count, bytes) : nullptr;
}

void* SmallChangedBlock(void* block, size_t bytes)
{
    return bytes <= smallBlock ? std::realloc(block, bytes) : nullptr;
}

/// While this lives, the module finds no range of free addresses.
struct NoAddresses
{
    HMODULE module = LumoraModule::Shared().handle;
    ImportHook pages{module, "VirtualAlloc", NoPages};
    ImportHook blocks{module, "malloc", SmallBlock};
    ImportHook zeroedBlocks{module, "calloc", SmallZeroedBlock};
    ImportHook changedBlocks{module, "realloc", SmallChangedBlock};
};

struct Outcomes
{
    Outcome decoding;
    Outcome properties;
};

/// Opens the stream's file on a thread that lacks something, for its picture and for its properties. Both
/// must be there when nothing is lacking any more.
template <typename Lack>
Outcomes OpenWithout(const Bytes& sample)
{
    Outcomes outcomes;
    OnAnotherThread([&] {
        TestStream stream{sample};
        ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        const ComPtr<IPropertyStore> store = NewPropertyStore();
        {
            const Lack lack;
            outcomes.decoding = OutcomeOf([&] { return Initialize(decoder, stream); });
            outcomes.properties = OutcomeOf([&] { return Initialize(store, &stream); });
        }
        const bool isOpen = outcomes.decoding.result == S_OK && outcomes.decoding.exception.empty();
        EXPECT_EQ(Initialize(decoder, stream), isOpen ? WINCODEC_ERR_WRONGSTATE : S_OK);
        EXPECT_FALSE(Picture(Frame(decoder, 0)).empty());
        EXPECT_EQ(Initialize(store, &stream), S_OK);
        decoder.Reset();
        EXPECT_EQ(stream.references, 0U);
    });
    return outcomes;
}

} // namespace

TEST(NoHandles, AreMissedByHdfAlone)
{
    const std::vector<std::string> noMutex = {"[Lumora] HDF: Failed to create mutex",
                                              "[Lumora] HDF: Mutex timeout"};
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        const auto [decoding, properties] = OpenWithout<NoHandles>(sample.content);
        if (IsHdf(sample))
        {
            EXPECT_EQ(decoding, (Outcome{.result = WINCODEC_ERR_WRONGSTATE, .lines = noMutex}));
            EXPECT_EQ(properties, (Outcome{.result = E_FAIL, .lines = noMutex}));
            continue;
        }
        EXPECT_EQ(decoding.result, S_OK);
        EXPECT_EQ(decoding.exception, "");
        EXPECT_EQ(properties.result, S_OK);
    }
}

TEST(NoHandles, AreNotMissedByTheFirstExceptionOfAThread)
{
    OnAnotherThread([] {
        TestStream stream{GrayStack(1), {.failReadAt = 2}};
        const ComPtr<IWICBitmapDecoder> decoder = NewDecoder();
        const NoHandles lack;
        EXPECT_EQ(OutcomeOf([&] { return Initialize(decoder, stream); }),
                  (Outcome{.exception = "runtime_error: Could not read file"}));
    });
}

TEST(NoAddresses, EndTheOpeningOfEachSample)
{
    const std::vector<std::string> noMemory = {"[Lumora] HDF: Could not allocated enough memory",
                                               "[Lumora] HDF: Could not open file"};
    const std::vector<std::string> caught = {
        "[Lumora] Exception in PropertyStore::Initialize( IStream *pStream, DWORD grfMode )"};
    for (const SampleFile& sample : SampleFiles())
    {
        SCOPED_TRACE(sample.name);
        const auto [decoding, properties] = OpenWithout<NoAddresses>(sample.content);
        const Outcome exception{.exception = "bad_alloc"};
        const Outcome refusal{.result = WINCODEC_ERR_WRONGSTATE, .lines = noMemory};
        EXPECT_EQ(decoding, IsHdf(sample) ? refusal : exception);
        EXPECT_EQ(properties, (Outcome{.result = E_FAIL, .lines = IsHdf(sample) ? noMemory : caught}));
    }
}
