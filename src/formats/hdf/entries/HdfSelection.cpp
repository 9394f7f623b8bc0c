#include "formats/hdf/entries/HdfSelection.h"

#include "formats/hdf/HdfLog.h"
#include "formats/hdf/entries/HdfPaths.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace Tav::Imaging::RawImage {

namespace {

constexpr uint64_t mostEntries = 250;

/// The sum, limited to the largest number instead of wrapping.
uint64_t Sum(uint64_t a, uint64_t b)
{
    return b > std::numeric_limits<uint64_t>::max() - a ? std::numeric_limits<uint64_t>::max() : a + b;
}

uint32_t Area(const HdfImageEntry& entry)
{
    return entry.width * entry.height;
}

} // namespace

void HdfSelection::Candidates::Add(const Run& run)
{
    const bool isLargest = Area(run.first) > largestArea;
    largestArea = std::max(largestArea, Area(run.first));
    if (found < mostEntries || IsThumbnailPath(run.first.path))
        kept.push_back(run);
    else if (isLargest)
        largestBehind = run;
    found = Sum(found, run.count);
}

std::vector<HdfSelection::Run> HdfSelection::Candidates::All() const
{
    std::vector<Run> runs = kept;
    if (largestBehind)
        runs.push_back(*largestBehind);
    return runs;
}

/// The last thumbnail: there can be several, whose paths differ in letter case.
std::optional<size_t> HdfSelection::LastThumbnail(const std::vector<Run>& runs)
{
    for (size_t i = runs.size(); i-- > 0;)
    {
        if (IsThumbnailPath(runs[i].first.path))
            return i;
    }
    return std::nullopt;
}

size_t HdfSelection::FirstOfLargestArea(const std::vector<Run>& runs)
{
    const auto area = [](const Run& run) { return Area(run.first); };
    return static_cast<size_t>(std::ranges::max_element(runs, {}, area) - runs.begin());
}

/// Moves the first frame of a run before all others.
void HdfSelection::MoveToFront(std::vector<Run>& runs, size_t index)
{
    if (index == 0)
        return;
    Run front{runs[index].first, 1};
    if (--runs[index].count == 0)
        runs.erase(runs.begin() + static_cast<std::ptrdiff_t>(index));
    else
        ++runs[index].first.frameInSeries;
    runs.insert(runs.begin(), std::move(front));
}

void HdfSelection::Add(const HdfImageEntry& first, uint64_t frameCount)
{
    (IsInImageGroup(first.path) ? imageGroup : others).Add({first, frameCount});
}

std::vector<HdfImageEntry> HdfSelection::Entries(bool isReductionTold) const
{
    std::vector<Run> runs = others.All();
    uint64_t count = others.found;
    // If a file has an image group, images outside it are not shown, except the thumbnail.
    if (imageGroup.found > 0)
    {
        const std::optional<size_t> thumbnail = LastThumbnail(runs);
        const std::vector<Run> outside = std::exchange(runs, imageGroup.All());
        count = Sum(imageGroup.found, thumbnail ? 1 : 0);
        if (thumbnail)
            runs.insert(runs.begin(), outside[*thumbnail]);
    }
    MoveToFront(runs, LastThumbnail(runs).value_or(FirstOfLargestArea(runs)));
    if (count > mostEntries && isReductionTold)
    {
        const auto found = static_cast<int32_t>(Sum(imageGroup.found, others.found));
        hdfLog.Write(L"Reduced images to " + std::to_wstring(mostEntries) + L" (found: " +
                     std::to_wstring(found) + L")");
    }

    std::vector<HdfImageEntry> entries;
    for (const Run& run : runs)
    {
        HdfImageEntry entry = run.first;
        for (uint64_t i = 0; i < run.count && entries.size() < mostEntries; ++i, ++entry.frameInSeries)
            entries.push_back(entry);
    }
    return entries;
}

} // namespace Tav::Imaging::RawImage
