#pragma once

#include <string>

namespace Tav::Imaging::RawImage {

/// Finds single text values in JSON texts with one member per line. It is not a parser: it uses a line only
/// if it has exactly one colon, the key in quotes before it and a quoted value after it.
class Json
{
public:
    explicit Json(std::string text);
    virtual ~Json() = default;

    /// Sets `value` to the first value found for the key, whatever the case of the key's letters in the text:
    /// what stands between the outermost quotes, undecoded. False, and `value` untouched, when there is none
    /// or it is empty.
    [[nodiscard]] bool GetString(const std::string& key, std::string& value) const;

private:
    std::string text;
};

} // namespace Tav::Imaging::RawImage
