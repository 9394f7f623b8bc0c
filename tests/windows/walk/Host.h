#pragma once

#include <string>

/// The system on which the steps run.
struct Host
{
    /// Its name and version, in one line.
    std::string name;
    /// Wine has no thumbnails, no property system and no verbs of its own: what fails there says nothing.
    bool isWine = false;
    /// Whether this process may change the machine's settings.
    bool isElevated = false;
};

[[nodiscard]] Host ThisHost();

/// The text as UTF-8.
[[nodiscard]] std::string Utf8(const std::wstring& text);

/// A result code in eight digits.
[[nodiscard]] std::string HexCode(unsigned long code);
