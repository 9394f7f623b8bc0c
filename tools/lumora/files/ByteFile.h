#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Lumora {

/// A file or a pipe, which is closed when it is no longer needed. Whatever fails throws a Failure with the
/// reason alone.
class ByteFile
{
public:
    /// What the system knows it by; nothing if it is null.
    struct Handle;

    ByteFile() noexcept;
    explicit ByteFile(std::unique_ptr<Handle> opened) noexcept;
    ByteFile(ByteFile&& other) noexcept;
    ByteFile& operator=(ByteFile&& other) noexcept;
    ~ByteFile();

    [[nodiscard]] static ByteFile Open(const std::wstring& path);
    /// An empty file, instead of one that is there.
    [[nodiscard]] static ByteFile Create(const std::wstring& path);
    /// A file beside the one with this path. It vanishes with the object, or with the program.
    [[nodiscard]] static ByteFile MakeTemporary(const std::wstring& neighbour);
    [[nodiscard]] static ByteFile StandardInput();
    [[nodiscard]] static ByteFile StandardOutput();

    /// Reads some of the next bytes: at least one, or none at the end.
    [[nodiscard]] size_t Read(std::span<uint8_t> target);
    /// Writes all of the bytes.
    void Write(std::span<const uint8_t> bytes);
    /// Goes on at that byte.
    void Seek(uint64_t position);
    void Close();

private:
    std::unique_ptr<Handle> handle;
};

/// Fills the target. Returns false at the end of the file. Throws a Failure.
[[nodiscard]] bool ReadWhole(ByteFile& file, std::span<uint8_t> target);

} // namespace Lumora
