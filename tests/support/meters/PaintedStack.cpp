#include "support/meters/PaintedStack.h"

#include <algorithm>
#include <stdexcept>

#include <pthread.h>
#include <sys/mman.h>

namespace {

constexpr uint64_t paint = 0xA5A5A5A5A5A5A5A5;

struct Call
{
    const std::function<void()>* function;
    uint64_t* top;
};

void* RunCall(void* argument)
{
    Call& call = *static_cast<Call*>(argument);
    call.top = static_cast<uint64_t*>(__builtin_frame_address(0));
    (*call.function)();
    return nullptr;
}

} // namespace

PaintedStack::PaintedStack(size_t stackBytes)
    : bytes(stackBytes), lowest(static_cast<uint64_t*>(mmap(nullptr, stackBytes, PROT_READ | PROT_WRITE,
                                                            MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
{
    if (lowest == MAP_FAILED)
        throw std::runtime_error("no memory for a stack");
    std::fill_n(lowest, bytes / sizeof(paint), paint);
}

PaintedStack::~PaintedStack()
{
    munmap(lowest, bytes);
}

size_t PaintedStack::Run(const std::function<void()>& function)
{
    Call call{&function, nullptr};
    pthread_attr_t attributes;
    pthread_t thread;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, lowest, bytes);
    const int error = pthread_create(&thread, &attributes, RunCall, &call);
    pthread_attr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error("no thread");
    pthread_join(thread, nullptr);
    uint64_t* const used = std::find_if(lowest, call.top, [](uint64_t word) { return word != paint; });
    std::fill(used, lowest + bytes / sizeof(paint), paint);
    return static_cast<size_t>(call.top - used) * sizeof(paint);
}
