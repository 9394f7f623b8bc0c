#pragma once

#include "core/stream/StreamReader.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Tav::Imaging::RawImage {

/// A fact of the tag tree that can lead to an image. A value is kept only if it belongs to a label that says
/// something about images, and another label only if it ends such values: a file can consist of tags, and
/// each of these takes more memory than the tag takes in the file.
struct DmTag
{
    enum class Kind : uint32_t
    {
        LargeArray,
        UInt32Value,
        DataTypeLabel,
        DimensionsLabel,
        OtherLabel,
    };

    Kind kind;
    /// The value, for UInt32Value.
    uint32_t value;
    /// Absolute stream offset of the first element, for LargeArray.
    uint64_t dataOffset;
};

/// Walks a Digital Micrograph tag tree from the reader's position on and lists its facts in file order.
/// Nothing is read but structure words, labels and 32-bit values.
class DmTagWalk
{
public:
    /// Structure words that version 4 widened have 8 bytes with `wideFields`, else 4.
    DmTagWalk(StreamReader& source, bool wideFields) noexcept : reader(source), hasWideFields(wideFields) {}

    /// Reads tag groups one after another until one is damaged or the stream ends; what was found before
    /// stays.
    void Run();

    std::vector<DmTag> tags;

private:
    [[nodiscard]] bool ReadGroup(uint32_t depth);
    [[nodiscard]] bool ReadEntry(uint32_t depth);
    [[nodiscard]] bool ReadLabel();
    /// Whether a value that follows belongs to a label that says something about images.
    [[nodiscard]] bool TakesValues() const;
    [[nodiscard]] bool ReadData();
    [[nodiscard]] bool ReadValue();
    [[nodiscard]] bool SkipString();
    [[nodiscard]] bool ReadArray();
    /// The size of a struct's values in bytes, after its description; nothing for a damaged one.
    [[nodiscard]] std::optional<uint64_t> ReadStructDescription();
    /// The next structure word: big-endian, of the version's width, its low 32 bits.
    [[nodiscard]] std::optional<uint32_t> ReadWord();
    [[nodiscard]] bool SkipWord();

    StreamReader& reader;
    bool hasWideFields;
};

} // namespace Tav::Imaging::RawImage
