#include "formats/HdfSelection.h"

#include "core/Diagnostics.h"
#include "core/StreamReader.h"
#include "formats/HdfAccess.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t mostEntries = 250;

uint64_t EntryCount(const std::vector<HdfImageRun>& runs)
{
    uint64_t count = 0;
    for (const HdfImageRun& run : runs)
        count = run.count > std::numeric_limits<uint64_t>::max() - count
                    ? std::numeric_limits<uint64_t>::max()
                    : count + run.count;
    return count;
}

bool IsInImageGroup(const HdfImageRun& run)
{
    return ToLower(run.first.path).starts_with("/data/image/");
}

std::optional<size_t> LastThumbnail(const std::vector<HdfImageRun>& runs)
{
    for (size_t i = runs.size(); i-- > 0;)
    {
        if (IsThumbnailPath(runs[i].first.path))
            return i;
    }
    return std::nullopt;
}

size_t FirstOfLargestArea(const std::vector<HdfImageRun>& runs)
{
    const auto area = [](const HdfImageRun& run) { return run.first.width * run.first.height; };
    return static_cast<size_t>(std::ranges::max_element(runs, {}, area) - runs.begin());
}

/// Of a file that has an image group, what lies outside is not shown, but for the thumbnail.
void KeepImageGroup(std::vector<HdfImageRun>& runs)
{
    if (std::ranges::none_of(runs, IsInImageGroup))
        return;
    const std::optional<size_t> thumbnail = LastThumbnail(runs);
    std::vector<HdfImageRun> kept;
    for (size_t i = 0; i < runs.size(); ++i)
    {
        if (i == thumbnail || IsInImageGroup(runs[i]))
            kept.push_back(std::move(runs[i]));
    }
    runs = std::move(kept);
}

/// Moves the first frame of a run before all others.
void MoveToFront(std::vector<HdfImageRun>& runs, size_t index)
{
    if (index == 0)
        return;
    HdfImageRun front = runs[index];
    front.count = 1;
    if (--runs[index].count == 0)
        runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(index));
    else
        ++runs[index].first.frameInSeries;
    runs.insert(runs.begin(), std::move(front));
}

} // namespace

std::vector<HdfImageEntry> SelectHdfEntries(std::vector<HdfImageRun> runs, bool isReductionTold)
{
    const uint64_t found = EntryCount(runs);
    if (found >= 2)
    {
        KeepImageGroup(runs);
        MoveToFront(runs, LastThumbnail(runs).value_or(FirstOfLargestArea(runs)));
    }
    if (EntryCount(runs) > mostEntries && isReductionTold)
        WriteDiagnostic(L"HDF: ", L"Reduced images to " + std::to_wstring(mostEntries) + L" (found: " +
                                      std::to_wstring(static_cast<int32_t>(found)) + L")");

    std::vector<HdfImageEntry> entries;
    for (const HdfImageRun& run : runs)
    {
        HdfImageEntry entry = run.first;
        for (uint64_t i = 0; i < run.count && entries.size() < mostEntries; ++i, ++entry.frameInSeries)
            entries.push_back(entry);
    }
    return entries;
}

} // namespace Tav::Imaging::RawImage
