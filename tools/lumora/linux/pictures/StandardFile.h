#pragma once

#include "lumora/linux/Errors.h"
#include "lumora/linux/files/FileHandle.h"

#include <cstdio>
#include <memory>

namespace Lumora {

struct StandardFileCloser
{
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

/// A file as libraries of C want it.
using StandardFile = std::unique_ptr<std::FILE, StandardFileCloser>;

/// Opens a file as fopen does. Throws a Failure with the reason.
[[nodiscard]] inline StandardFile OpenStandardFile(const std::wstring& path, const char* mode)
{
    StandardFile file(std::fopen(BytesOfName(path).c_str(), mode));
    if (!file)
        ThrowLastError();
    return file;
}

} // namespace Lumora
