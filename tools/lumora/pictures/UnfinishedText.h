#pragma once

#include "lumora/files/ByteFile.h"
#include "lumora/pictures/UnfinishedFile.h"

#include <string>
#include <string_view>

namespace Lumora {

/// A text that is written part after part, and gets its name when it is finished. Whatever fails throws a
/// Failure.
class UnfinishedText
{
public:
    /// For the file at this path, as UnfinishedFile takes it.
    UnfinishedText(const std::wstring& path, std::string_view signature);

    /// Appends UTF-8.
    void Write(std::string_view text);

    /// Gives the text its name.
    void Keep();

private:
    void WriteOut();

    UnfinishedFile file;
    // This is closed before the file is removed.
    ByteFile stream;
    /// What is not written yet.
    std::string pending;
};

} // namespace Lumora
