#include "lumora/batch/Pipe.h"

#include "lumora/console/Failure.h"

#include <array>
#include <bit>
#include <cstring>
#include <utility>

namespace Lumora {

namespace {

/// A larger message is none of ours: the largest one has a picture of 1024 x 1024 pixels.
constexpr uint32_t largestMessage = 64U << 20;

} // namespace

bool SendTo(ByteFile& pipe, const std::vector<uint8_t>& message)
{
    const auto size = static_cast<uint32_t>(message.size());
    std::vector<uint8_t> bytes(sizeof(size) + message.size());
    std::memcpy(bytes.data(), &size, sizeof(size));
    std::memcpy(bytes.data() + sizeof(size), message.data(), message.size());
    return !FailureOf([&] { pipe.Write(bytes); });
}

std::optional<std::vector<uint8_t>> ReceiveFrom(ByteFile& pipe)
{
    std::array<uint8_t, sizeof(uint32_t)> start = {};
    std::vector<uint8_t> message;
    bool isWhole = false;
    const auto failure = FailureOf([&] {
        if (!ReadWhole(pipe, start))
            return;
        const auto size = std::bit_cast<uint32_t>(start);
        if (size > largestMessage)
            return;
        message.resize(size);
        isWhole = ReadWhole(pipe, message);
    });
    return isWhole && !failure ? std::optional(std::move(message)) : std::nullopt;
}

} // namespace Lumora
