#pragma once

#include "lumora/files/FileList.h"
#include "lumora/files/Paths.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// Chooses the names of the pictures: each only once, and never that of a source.
class OutputNames
{
public:
    OutputNames(std::wstring folder, const std::vector<SourceFile>& sources);

    /// The name for a frame of the file, with the frame's number if one is given. Makes the folder of the
    /// picture. Throws a Failure if the name is taken.
    [[nodiscard]] std::wstring Claim(const SourceFile& file, std::optional<uint32_t> frame);

private:
    std::wstring folder;
    /// Full paths that are taken, and what is there.
    std::map<std::wstring, std::wstring, NameLess> taken;
};

} // namespace Lumora
