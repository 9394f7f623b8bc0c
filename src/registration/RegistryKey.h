#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// A value as it stands in the registry.
struct RegistryValue
{
    DWORD type = REG_NONE;
    std::vector<uint8_t> bytes;

    [[nodiscard]] static RegistryValue Text(std::wstring_view text);
    [[nodiscard]] static RegistryValue Number(uint32_t number);
    [[nodiscard]] static RegistryValue Binary(std::span<const uint8_t> bytes);

    /// The text without its zero; empty if the value has another type.
    [[nodiscard]] std::wstring AsText() const;

    bool operator==(const RegistryValue&) const = default;
};

/// A part of the registry that belongs to Windows: Lumora neither creates nor deletes it.
struct RegistryBranch
{
    HKEY hive;
    const wchar_t* path;
};

/// A key of such a branch, which need not exist; an empty path is the branch itself. Every operation returns
/// ERROR_SUCCESS or the error that Windows reported.
class RegistryKey
{
public:
    RegistryKey(RegistryBranch branch, std::wstring_view path);

    /// Path with the name of the hive, for people.
    [[nodiscard]] std::wstring FullPath() const;

    /// The value of that name; nothing when it, or the key, does not exist. An empty name is the default
    /// value.
    [[nodiscard]] LSTATUS Read(const std::wstring& name, std::optional<RegistryValue>& value) const;

    /// Sets a value; the key and those above it are created as needed.
    [[nodiscard]] LSTATUS Write(const std::wstring& name, const RegistryValue& value) const;

    /// Deletes a value. Here and below, something that does not exist counts as deleted.
    [[nodiscard]] LSTATUS DeleteValue(const std::wstring& name) const;

    /// Deletes the key with everything in it.
    [[nodiscard]] LSTATUS DeleteTree() const;

    /// Deletes the key if it holds nothing, and then the keys above it in the same way, up to the branch.
    [[nodiscard]] LSTATUS DeleteWhileEmpty() const;

private:
    RegistryBranch branch;
    /// The path below the hive.
    std::wstring path;
};

} // namespace Lumora
