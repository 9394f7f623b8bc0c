#pragma once

#include "core/Diagnostics.h"
#include "core/RawImageBase.h"

#include <cstdint>

namespace Tav::Imaging::RawImage {

/// Reads one image of a Digital Micrograph file: a tree of named tags, walked once. The two versions of
/// the format differ in the width of their size and count fields.
class RawImageDm : public RawImageBase
{
public:
    bool Read(IStream* stream, uint64_t streamSize, uint32_t mode, uint32_t frameIndex) override;

protected:
    /// What distinguishes the versions.
    struct Version
    {
        uint32_t number;
        FileType fileType;
        ReaderLog log;
        /// Size and count fields have 8 bytes instead of 4; only their low halves are used.
        bool hasWideFields;
    };

    explicit RawImageDm(const Version& formatVersion) noexcept : version(formatVersion) {}

private:
    Version version;
};

/// Reads version 3 of the format.
class RawImageDm3 final : public RawImageDm
{
public:
    RawImageDm3() noexcept : RawImageDm({3, FileType::Dm3, ReaderLog{L"DM3: "}, false}) {}
};

/// Reads version 4 of the format.
class RawImageDm4 final : public RawImageDm
{
public:
    RawImageDm4() noexcept : RawImageDm({4, FileType::Dm4, ReaderLog{L"DM4: "}, true}) {}
};

} // namespace Tav::Imaging::RawImage
