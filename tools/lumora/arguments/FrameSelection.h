#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

namespace Lumora {

/// Which frames of a file are wanted, counted from 0.
class FrameSelection
{
public:
    /// The first frame.
    FrameSelection() = default;

    /// Reads "all", numbers and ranges, each with or without a step, separated by commas: "all/10", "0-9,20".
    /// Returns nothing for any other text.
    [[nodiscard]] static std::optional<FrameSelection> Parse(std::wstring_view text);

    [[nodiscard]] static FrameSelection All();

    /// The number if the selection is a single one.
    [[nodiscard]] std::optional<uint32_t> SingleFrame() const noexcept;

    /// The smallest frame of the selection that is not before `from`, if a file with this number of frames
    /// has one.
    [[nodiscard]] std::optional<uint32_t> Next(uint32_t from, uint32_t frameCount) const noexcept;

    template <class Archive>
    void Transfer(Archive& archive)
    {
        archive.Field(ranges);
    }

private:
    struct Range
    {
        uint32_t first = 0;
        uint32_t last = 0;
        uint32_t step = 1;

        template <class Archive>
        void Transfer(Archive& archive)
        {
            archive.Field(first);
            archive.Field(last);
            archive.Field(step);
        }
    };

    static constexpr uint32_t lastFrame = std::numeric_limits<uint32_t>::max();

    [[nodiscard]] static std::optional<Range> ParseRange(std::wstring_view text);

    std::vector<Range> ranges = {{}};
};

} // namespace Lumora
