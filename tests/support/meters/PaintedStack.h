#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

/// A thread's stack that is filled with a pattern, so that it shows how far down it has been written.
class PaintedStack
{
public:
    explicit PaintedStack(size_t stackBytes);
    PaintedStack(const PaintedStack&) = delete;
    PaintedStack& operator=(const PaintedStack&) = delete;
    ~PaintedStack();

    /// Runs a function on a thread that has this stack. Returns how many bytes it has used.
    size_t Run(const std::function<void()>& function);

private:
    /// A whole number of words, which are compared quicker than bytes.
    size_t bytes;
    uint64_t* lowest;
};
