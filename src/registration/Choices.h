#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// File name extensions, each with its dot and in lowercase.
using ExtensionNames = std::vector<std::wstring>;

/// What an administrator has chosen. A registration stores it, and later ones keep it.
struct Choices
{
    /// The extensions that are not registered.
    ExtensionNames leftOut = {};
    /// The extensions of files with any data whose properties Explorer shows nevertheless, although the whole
    /// file is read for them.
    ExtensionNames withProperties = {};
    /// Whether Windows takes the files of our own extensions for pictures. Searches and menus for pictures
    /// then have them, and so do programs that write pictures over those that they find.
    bool arePictures = true;
    /// Whether Windows offers its Photo Viewer for the files of our own extensions.
    bool areInPhotoViewer = false;

    bool operator==(const Choices&) const = default;
};

/// One thing to choose, whose value is a text: a list of extensions such as ".h5, map" or "none", or 1 or 0.
struct Choice
{
    /// Its name as a property of the setup package.
    const wchar_t* property;
    /// Its name in the registry, where a registration stores the value.
    const wchar_t* storedName;
    /// Makes the choice. Returns what is wrong with the value, for people; nothing when it was taken.
    std::optional<std::wstring> (*take)(Choices& choices, std::wstring_view value);
    /// The value that has been taken.
    std::wstring (*valueIn)(const Choices& choices);
};

[[nodiscard]] std::span<const Choice> AllChoices() noexcept;

/// Makes the choice that the setup package calls `property`, as above.
[[nodiscard]] std::optional<std::wstring> Choose(Choices& choices, std::wstring_view property,
                                                 std::wstring_view value);

/// What differs from the usual choices, for people, as in "Left out: .h5".
[[nodiscard]] std::vector<std::wstring> Describe(const Choices& choices);

} // namespace Lumora
