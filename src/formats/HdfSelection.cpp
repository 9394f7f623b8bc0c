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

bool IsThumbnail(const HdfImageRun& run)
{
    return IsThumbnailPath(run.first.path);
}

/// The last picture in small, or else the first of the largest frames.
size_t RepresentativeRun(const std::vector<HdfImageRun>& runs)
{
    const auto area = [&runs](size_t i) { return runs[i].first.width * runs[i].first.height; };
    size_t largest = 0;
    std::optional<size_t> thumbnail;
    for (size_t i = 0; i < runs.size(); ++i)
    {
        if (area(i) > area(largest))
            largest = i;
        if (IsThumbnail(runs[i]))
            thumbnail = i;
    }
    return thumbnail.value_or(largest);
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
        if (std::any_of(runs.begin(), runs.end(), IsInImageGroup))
            std::erase_if(runs,
                          [](const HdfImageRun& run) { return !IsInImageGroup(run) && !IsThumbnail(run); });
        MoveToFront(runs, RepresentativeRun(runs));
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
