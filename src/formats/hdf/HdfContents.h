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

/// The contents of one HDF5 file, as the library in the sandbox reads them. If the file ends the sandbox, the
/// next question gets a new one. All sandboxes of a file share one budget of work and memory. Every method
/// throws std::bad_alloc when the host has no memory.
class HdfContents
{
public:
    /// The stream must outlive this object.
    HdfContents(IStream* fileStream, uint64_t streamSize) noexcept;

    /// Reads the whole stream and opens it as an HDF5 file. Returns false if it is none, or, after a
    /// diagnostic line, if memory cannot hold it.
    [[nodiscard]] bool Open();

    /// Goes to the next dataset, in the order of the names in each group. False when there are no more that
    /// can be found.
    [[nodiscard]] bool GoToNextDataset();

    /// The path of the current dataset, as spelled in the file; nothing if it is longer than `longest`.
    [[nodiscard]] std::optional<std::string> Path(uint32_t longest = longestHdfPath);

    /// The facts that decide whether the current dataset can be shown; nothing if it is no image, or cannot
    /// be examined.
    [[nodiscard]] std::optional<HdfCandidate> Examine();

    /// How many bytes a dataset's samples take in the file; 0 if there are none, or if this is unknown.
    [[nodiscard]] uint64_t StoredBytes(const std::string& path);

    /// The first string of a dataset.
    [[nodiscard]] std::optional<std::string> ReadString(const std::string& path);

    /// The bytes of a whole dataset; nothing if it is empty, or takes more than `most` bytes in the file or
    /// in memory.
    [[nodiscard]] std::optional<std::vector<uint8_t>> ReadBytes(const std::string& path, uint64_t most);

    /// Reads a whole dataset. It must have exactly as many samples of the pixel type as `samples` has room
    /// for.
    [[nodiscard]] bool ReadDataset(const std::string& path, PixelType pixelType, std::span<uint8_t> samples);

    /// Reads one frame of a series into width x height samples of the entry's pixel type.
    [[nodiscard]] bool ReadSeriesFrame(const HdfImageEntry& entry, std::span<uint8_t> samples);

private:
    /// Returns the answer to a question, or `otherwise` if the question ends the sandbox.
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
    /// The address of the file in the sandbox.
    HdfSandbox::Address image = 0;
    /// The steps that are left for this file, while there is no sandbox.
    int64_t steps;
    /// How many datasets the walk has reached, and how often it has restarted.
    uint64_t datasetsMet = 0;
    uint32_t restarts = 0;
    uint32_t pathLength = 0;
};

} // namespace Tav::Imaging::RawImage
