#pragma once

#include "core/PixelType.h"
#include "formats/hdf/entries/HdfImageEntry.h"
#include "formats/hdf/inside/HdfCandidate.h"
#include "formats/hdf/sandbox/HdfSandbox.h"
#include "platform/Platform.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Tav::Imaging::RawImage {

/// The contents of one HDF5 file, as the library in the sandbox tells them. A file that makes the sandbox end
/// gets a new one for the next question; work and memory are limited for all of them together. Every method
/// throws std::bad_alloc when the host has no memory.
class HdfContents
{
public:
    /// The stream must outlive this object.
    HdfContents(IStream* fileStream, uint64_t streamSize) noexcept;

    /// Reads the whole stream and opens it as an HDF5 file. False, after a diagnostic line for a file that
    /// memory cannot hold, when it is none.
    [[nodiscard]] bool Open();

    /// Goes to the next dataset, in the order of the names in each group. False when there are no more that
    /// can be found.
    [[nodiscard]] bool GoToNextDataset();

    /// The path of the dataset at hand, as spelled in the file; nothing for one that is longer than
    /// `longest`.
    [[nodiscard]] std::optional<std::string> Path(uint32_t longest = longestHdfPath);

    /// What tells whether the dataset at hand can be shown; nothing when it is no image, or cannot be looked
    /// at.
    [[nodiscard]] std::optional<HdfCandidate> Examine();

    /// What a dataset's samples take in the file; 0 when there are none, or when it cannot be told.
    [[nodiscard]] uint64_t StoredBytes(const std::string& path);

    /// The first string of a dataset.
    [[nodiscard]] std::optional<std::string> ReadString(const std::string& path);

    /// The bytes of a whole dataset, when it takes `most` bytes at most, both in the file and in memory;
    /// nothing for an empty one.
    [[nodiscard]] std::optional<std::vector<uint8_t>> ReadBytes(const std::string& path, uint64_t most);

    /// Reads a whole dataset of as many samples of the pixel type as there is room for.
    [[nodiscard]] bool ReadDataset(const std::string& path, PixelType pixelType, std::span<uint8_t> samples);

    /// Reads one frame of a series into width x height samples of the entry's pixel type.
    [[nodiscard]] bool ReadSeriesFrame(const HdfImageEntry& entry, std::span<uint8_t> samples);

private:
    /// What a question gives; `otherwise` when it ends the sandbox.
    template <typename Answer, typename Question>
    Answer Ask(Answer otherwise, Question question);
    void EndSandbox() noexcept;
    void AddSteps(int64_t count) noexcept;

    void MakeSandbox();
    [[nodiscard]] bool OpenFile();
    [[nodiscard]] bool GoBackToDataset();
    void PassPath(const std::string& path);
    [[nodiscard]] bool ReadBands(std::span<uint8_t> samples);

    IStream* stream;
    uint64_t size;
    std::unique_ptr<HdfSandbox> sandbox;
    /// Where the file lies in the sandbox.
    HdfSandbox::Address image = 0;
    /// What is left of the work that may be done for this file, while there is no sandbox.
    int64_t steps;
    /// How many datasets the walk has come to, and how often it had to begin again.
    uint64_t datasetsMet = 0;
    uint32_t restarts = 0;
    uint32_t pathLength = 0;
};

} // namespace Tav::Imaging::RawImage
