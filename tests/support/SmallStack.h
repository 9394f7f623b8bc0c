#pragma once

#include <cstddef>
#include <functional>

#ifdef _WIN32
#include <windows.h>
#else
#include <pthread.h>
#endif

#include <gtest/gtest.h>

/// Runs a function on a thread of its own that has a stack of so many bytes, as a host's thread may have.
inline void RunOnSmallStack(size_t stackBytes, const std::function<void()>& function)
{
    const void* const argument = &function;
#ifdef _WIN32
    const auto run = [](void* called) -> DWORD {
        (*static_cast<const std::function<void()>*>(called))();
        return 0;
    };
    const HANDLE thread = CreateThread(nullptr, stackBytes, run, const_cast<void*>(argument),
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_TRUE(thread);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
#else
    const auto run = [](void* called) -> void* {
        (*static_cast<const std::function<void()>*>(called))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, stackBytes);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<void*>(argument)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
#endif
}
