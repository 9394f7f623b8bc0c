#pragma once

#include "lumora/files/FileList.h"
#include "lumora/files/Paths.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Lumora {

/// Hands out the names of the pictures, each only once, and none that is a source's.
class OutputNames
{
public:
    OutputNames(std::wstring folder, const std::vector<SourceFile>& sources);

    /// The name for a frame of the file, with a number in it when there is one. Makes the folder that it is
    /// in. Throws a Failure when the name is taken.
    [[nodiscard]] std::wstring Claim(const SourceFile& file, std::optional<uint32_t> frame);

private:
    std::wstring folder;
    /// Full paths that are taken, and what is there.
    std::map<std::wstring, std::wstring, NameLess> taken;
};

} // namespace Lumora
