#pragma once

#include "formats/hdf/entries/HdfImageEntry.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Tav::Imaging::RawImage {

/// Chooses and orders the frames of a file as they are found: at most 250, and first the one that represents
/// the file. Frames that can no longer be chosen are only counted, because a small file can promise more
/// frames, or name one frame more often, than memory can hold.
class HdfSelection
{
public:
    /// Adds the frames of a dataset, which differ from `first` only in their number.
    void Add(const HdfImageEntry& first, uint64_t frameCount);

    /// The frames to show. If more were found and `isReductionTold` is set, a diagnostic line says how many.
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
        /// After those that can be shown, the first of the largest, if it is larger than all kept ones.
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
