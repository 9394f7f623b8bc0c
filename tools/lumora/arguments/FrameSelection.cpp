#include "lumora/arguments/FrameSelection.h"

#include "lumora/arguments/Numbers.h"

namespace Lumora {

std::optional<FrameSelection> FrameSelection::Parse(std::wstring_view text)
{
    FrameSelection selection;
    selection.ranges.clear();
    for (;;)
    {
        const std::wstring_view part = text.substr(0, text.find(L','));
        const std::optional<Range> range = ParseRange(part);
        if (!range)
            return std::nullopt;
        selection.ranges.push_back(*range);
        if (part.size() == text.size())
            return selection;
        text.remove_prefix(part.size() + 1);
    }
}

FrameSelection FrameSelection::All()
{
    FrameSelection selection;
    selection.ranges = {{0, lastFrame, 1}};
    return selection;
}

std::optional<FrameSelection::Range> FrameSelection::ParseRange(std::wstring_view text)
{
    std::optional<uint32_t> step = 1;
    if (const size_t slash = text.find(L'/'); slash != std::wstring_view::npos)
    {
        step = ParseNumber(text.substr(slash + 1), 1, lastFrame);
        text = text.substr(0, slash);
    }
    std::optional<uint32_t> first = 0;
    std::optional<uint32_t> last = lastFrame;
    if (text != L"all")
    {
        const size_t dash = text.find(L'-');
        first = ParseNumber(text.substr(0, dash), 0, lastFrame);
        last = dash == std::wstring_view::npos ? first : ParseNumber(text.substr(dash + 1), 0, lastFrame);
    }
    if (!first || !last || !step || *last < *first)
        return std::nullopt;
    return Range{*first, *last, *step};
}

std::optional<uint32_t> FrameSelection::SingleFrame() const noexcept
{
    if (ranges.size() != 1 || ranges.front().first != ranges.front().last)
        return std::nullopt;
    return ranges.front().first;
}

std::optional<uint32_t> FrameSelection::Next(uint32_t from, uint32_t frameCount) const noexcept
{
    std::optional<uint32_t> next;
    for (const Range& range : ranges)
    {
        uint64_t candidate = range.first;
        if (from > range.first)
        {
            const uint64_t steps = (uint64_t{from} - range.first + range.step - 1) / range.step;
            candidate += steps * range.step;
        }
        if (candidate <= range.last && candidate < next.value_or(frameCount))
            next = static_cast<uint32_t>(candidate);
    }
    return next;
}

} // namespace Lumora
