#pragma once

#include <utility>

#include <unistd.h>

namespace Lumora {

/// A file descriptor that is closed when it is no longer needed. There is none if it is negative.
class Descriptor
{
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int opened) noexcept : value(opened) {}
    Descriptor(Descriptor&& other) noexcept : value(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(value, other.value);
        return *this;
    }
    ~Descriptor()
    {
        if (value >= 0)
            close(value);
    }

    [[nodiscard]] int Value() const noexcept { return value; }
    [[nodiscard]] int Release() noexcept { return std::exchange(value, -1); }

private:
    int value = -1;
};

} // namespace Lumora
