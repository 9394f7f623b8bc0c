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

/// Takes over the descriptor. Throws a Failure.
[[nodiscard]] inline StandardFile StandardFileOf(Descriptor descriptor, const char* mode)
{
    StandardFile file(fdopen(descriptor.Value(), mode));
    if (!file)
        ThrowLastError();
    static_cast<void>(descriptor.Release());
    return file;
}

/// Opens a file to read it. Throws a Failure with the reason.
[[nodiscard]] inline StandardFile OpenStandardFile(const std::wstring& path)
{
    StandardFile file(std::fopen(BytesOfName(path).c_str(), "rbe"));
    if (!file)
        ThrowLastError();
    return file;
}

} // namespace Lumora
