#include "lumora/batch/Pipe.h"

#include <cstring>

namespace Lumora {

namespace {

/// A larger message is none of ours: the largest one has a picture of 1024 x 1024 pixels.
constexpr uint32_t largestMessage = 64U << 20;

bool Read(HANDLE pipe, void* target, size_t size)
{
    auto* place = static_cast<uint8_t*>(target);
    while (size > 0)
    {
        DWORD count = 0;
        if (!ReadFile(pipe, place, static_cast<DWORD>(size), &count, nullptr) || count == 0)
            return false;
        place += count;
        size -= count;
    }
    return true;
}

} // namespace

bool SendTo(HANDLE pipe, const std::vector<uint8_t>& message)
{
    const auto size = static_cast<uint32_t>(message.size());
    std::vector<uint8_t> bytes(sizeof(size) + message.size());
    std::memcpy(bytes.data(), &size, sizeof(size));
    std::memcpy(bytes.data() + sizeof(size), message.data(), message.size());
    DWORD written = 0;
    return WriteFile(pipe, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

std::optional<std::vector<uint8_t>> ReceiveFrom(HANDLE pipe)
{
    uint32_t size = 0;
    if (!Read(pipe, &size, sizeof(size)) || size > largestMessage)
        return std::nullopt;
    std::vector<uint8_t> message(size);
    if (!Read(pipe, message.data(), message.size()))
        return std::nullopt;
    return message;
}

} // namespace Lumora
