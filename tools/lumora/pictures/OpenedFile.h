#pragma once

#include "lumora/pictures/FileProperties.h"
#include "lumora/pictures/Imaging.h"
#include "shared/Picture.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Lumora {

/// A file that the system has opened with Lumora's decoder. Whatever fails throws a Failure.
class OpenedFile
{
public:
    OpenedFile(Imaging& imaging, const std::wstring& path);
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;
    ~OpenedFile();

    [[nodiscard]] uint32_t FrameCount() const;

    /// One of its frames. The picture may need this object.
    [[nodiscard]] std::unique_ptr<Picture> Frame(uint32_t index) const;

private:
    struct Means;
    const std::unique_ptr<Means> means;
};

/// What the system says about the file. Throws a Failure when it cannot read the file.
[[nodiscard]] FileProperties ReadProperties(Imaging& imaging, const std::wstring& path);

/// What the Failures of both say first.
inline constexpr const wchar_t* cannotReadPicture = L"the picture cannot be read";
inline constexpr const wchar_t* cannotReadProperties = L"the properties cannot be read";

} // namespace Lumora
