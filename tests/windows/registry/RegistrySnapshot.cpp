#include "windows/registry/RegistrySnapshot.h"

#include <array>

namespace {

/// A service of Windows fills this key while the tests run, soon after the start of a new Wine prefix.
constexpr const wchar_t* networkCards =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards";

/// Walks the registry with one set of buffers.
class Walker
{
public:
    void AddKey(HKEY parent, const std::wstring& keyName, const std::wstring& path)
    {
        HKEY key = nullptr;
        if (path == networkCards ||
            RegOpenKeyExW(parent, keyName.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
            return;
        snapshot[path] = {};
        AddValues(key, path);
        std::array<wchar_t, 256> subkey = {};
        for (DWORD index = 0;; ++index)
        {
            auto length = static_cast<DWORD>(subkey.size());
            if (RegEnumKeyExW(key, index, subkey.data(), &length, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                break;
            AddKey(key, subkey.data(), path + L'\\' + subkey.data());
        }
        RegCloseKey(key);
    }

    RegistrySnapshot snapshot;

private:
    void AddValues(HKEY key, const std::wstring& path)
    {
        for (DWORD index = 0;; ++index)
        {
            auto nameLength = static_cast<DWORD>(name.size());
            auto dataBytes = static_cast<DWORD>(data.size());
            DWORD type = 0;
            if (RegEnumValueW(key, index, name.data(), &nameLength, nullptr, &type, data.data(),
                              &dataBytes) != ERROR_SUCCESS)
                return;
            std::vector<uint8_t> content(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(dataBytes));
            content.push_back(static_cast<uint8_t>(type));
            snapshot[path + L" -> " + std::wstring(name.data(), nameLength)] = std::move(content);
        }
    }

    std::vector<wchar_t> name = std::vector<wchar_t>(16384);
    std::vector<uint8_t> data = std::vector<uint8_t>(1 << 20);
};

} // namespace

RegistrySnapshot TakeRegistrySnapshot(std::span<const RegistryTree> trees)
{
    Walker walker;
    for (const RegistryTree& tree : trees)
    {
        const std::wstring root =
            tree.root == HKEY_LOCAL_MACHINE ? L"HKEY_LOCAL_MACHINE\\" : L"HKEY_CURRENT_USER\\";
        walker.AddKey(tree.root, tree.key, root + tree.key);
    }
    return std::move(walker.snapshot);
}

RegistrySnapshot TakeRegistrySnapshot()
{
    const std::array<RegistryTree, 2> software = {{
        {HKEY_LOCAL_MACHINE, L"SOFTWARE"},
        {HKEY_CURRENT_USER, L"SOFTWARE"},
    }};
    return TakeRegistrySnapshot(software);
}

std::vector<std::wstring> Differences(const RegistrySnapshot& before, const RegistrySnapshot& after)
{
    std::vector<std::wstring> paths;
    for (const auto& [path, content] : before)
    {
        const auto same = after.find(path);
        if (same == after.end() || same->second != content)
            paths.push_back(path);
    }
    for (const auto& [path, content] : after)
    {
        if (!before.contains(path))
            paths.push_back(path);
    }
    return paths;
}
