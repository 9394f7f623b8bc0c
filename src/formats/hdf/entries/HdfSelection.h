#pragma once

#include "formats/hdf/entries/HdfImageEntry.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Chooses and orders the frames of a file as they are found: the one that stands for the file first, 250 at
/// most. What can no longer be among them is counted and not kept, for a small file can promise more frames,
/// or name one more often, than there is memory for.
class HdfSelection
{
public:
    /// Adds the frames of a dataset, which differ from `first` only in their number.
    void Add(const HdfImageEntry& first, uint64_t frameCount);

    /// The frames to show. Tells how many there were when those are more and `isReductionTold`.
    [[nodiscard]] std::vector<HdfImageEntry> Entries(bool isReductionTold) const;

private:
    /// The frames of one dataset.
    struct Run
    {
        HdfImageEntry first;
        uint64_t count;
    };

    /// Frames in the order in which they were found.
    struct Candidates
    {
        std::vector<Run> kept;
        /// Behind those that can be shown, the first that is larger than all before.
        std::optional<Run> largestBehind;
        uint64_t found = 0;
        uint32_t largestArea = 0;

        void Add(const Run& run);
        [[nodiscard]] std::vector<Run> All() const;
    };

    static std::optional<size_t> LastThumbnail(const std::vector<Run>& runs);
    static size_t FirstOfLargestArea(const std::vector<Run>& runs);
    static void MoveToFront(std::vector<Run>& runs, size_t index);

    Candidates imageGroup;
    Candidates others;
};

} // namespace Tav::Imaging::RawImage
