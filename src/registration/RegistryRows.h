#pragma once

#include <cstdint>
#include <span>
#include <variant>

namespace Lumora {

/// What a row is for. Those of the classes are written once, the others for each extension.
enum class For
{
    Classes,
    Thumbnails,
    Properties,
    Pictures,
    PhotoViewer,
};

/// Where a row's key begins.
enum class Branch
{
    // Of the machine or of the user.
    Classes,
    Software,
    // The others are the machine's alone.
    PropertyHandlers,
    Kinds,
    Microsoft,
};

/// Names between percent signs are replaced: %ext% and %mimeType% by those of an extension, the others by
/// names that all rows share.
struct Row
{
    For subject;
    Branch branch;
    const wchar_t* key;
    const wchar_t* name;
    std::variant<const wchar_t*, uint32_t> value;
    /// The text that an earlier version has written.
    const wchar_t* earlierText = nullptr;
};

/// All rows, in the order of writing.
[[nodiscard]] std::span<const Row> RegistryRows() noexcept;

} // namespace Lumora
