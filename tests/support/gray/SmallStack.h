#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>

#ifdef _WIN32
#include <windows.h>

#include <malloc.h>
#else
#include <pthread.h>
#endif

#include <gtest/gtest.h>

/// Runs a function on a stack of so many bytes, as a host's thread may have.
inline void RunOnSmallStack(size_t stackBytes, const std::function<void()>& function)
{
#ifdef _WIN32
    // A fiber: the C++ runtime does not clear up after threads that it has not made itself.
    struct Run
    {
        const std::function<void()>& function;
        size_t stackBytes;
        void* caller;
    };
    Run run{function, stackBytes, ConvertThreadToFiber(nullptr)};
    const auto start = [](void* argument) {
        const Run& called = *static_cast<Run*>(argument);
        // Wine makes no stack smaller than 1 MiB, so the surplus is used up first.
        ULONG_PTR low = 0;
        ULONG_PTR high = 0;
        GetCurrentThreadStackLimits(&low, &high);
        const size_t left = reinterpret_cast<uintptr_t>(__builtin_frame_address(0)) - low;
        auto* const taken =
            static_cast<volatile char*>(_alloca(std::max(left, called.stackBytes) - called.stackBytes));
        static_cast<void>(taken);
        called.function();
        SwitchToFiber(called.caller);
    };
    void* const fiber = CreateFiberEx(0x1000, stackBytes, 0, start, &run);
    ASSERT_TRUE(run.caller && fiber);
    SwitchToFiber(fiber);
    DeleteFiber(fiber);
    ConvertFiberToThread();
#else
    const auto run = [](void* called) -> void* {
        (*static_cast<const std::function<void()>*>(called))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackBytes);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&function)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
#endif
}
