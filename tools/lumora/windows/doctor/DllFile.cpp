#include "lumora/windows/doctor/DllFile.h"

#include "lumora/files/Paths.h"
#include "lumora/windows/Results.h"

#include <windows.h>

#include <imagehlp.h>

#include <memory>

namespace Lumora {

namespace {

struct HandleCloser
{
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

using File = std::unique_ptr<void, HandleCloser>;

/// Reads a structure. Returns false if the file ends before the structure does.
template <typename Structure>
bool ReadAt(const File& file, LONGLONG offset, Structure& structure)
{
    LARGE_INTEGER position;
    position.QuadPart = offset;
    DWORD count = 0;
    return SetFilePointerEx(file.get(), position, nullptr, FILE_BEGIN) &&
           ReadFile(file.get(), &structure, sizeof(structure), &count, nullptr) && count == sizeof(structure);
}

/// What is wrong with the headers, which no loader has checked yet; null if nothing is.
const wchar_t* DefectOfHeaders(const File& file)
{
    constexpr const wchar_t* noDll = L"is no DLL";
    IMAGE_DOS_HEADER dosHeader = {};
    if (!ReadAt(file, 0, dosHeader) || dosHeader.e_magic != IMAGE_DOS_SIGNATURE || dosHeader.e_lfanew < 0)
        return noDll;
    // The optional header differs between 32 and 64 bits from the ninth field on.
    struct
    {
        DWORD signature;
        IMAGE_FILE_HEADER file;
        WORD optionalMagic;
    } headers = {};
    if (!ReadAt(file, dosHeader.e_lfanew, headers) || headers.signature != IMAGE_NT_SIGNATURE ||
        (headers.file.Characteristics & IMAGE_FILE_DLL) == 0)
        return noDll;
    if (headers.file.Machine == IMAGE_FILE_MACHINE_I386)
        return L"is a 32-bit DLL";
    if (headers.file.Machine != IMAGE_FILE_MACHINE_AMD64 ||
        headers.optionalMagic != IMAGE_NT_OPTIONAL_HDR64_MAGIC)
        return L"is no DLL for x64 processors";
    return nullptr;
}

/// Whether the file has the checksum that the linker has stored in the header. Without a stored checksum, the
/// file counts as undamaged.
bool IsUndamaged(const std::wstring& path)
{
    DWORD linked = 0;
    DWORD present = 0;
    return MapFileAndCheckSumW(path.c_str(), &linked, &present) == CHECKSUM_SUCCESS &&
           (linked == 0 || linked == present);
}

/// Loads the DLL and releases it. Returns the error.
DWORD TryToLoad(const std::wstring& path)
{
    // The loader must not show a message box, which would wait until somebody presses a button.
    DWORD oldMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &oldMode);
    const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD error = module ? DWORD{ERROR_SUCCESS} : GetLastError();
    if (module)
        FreeLibrary(module);
    SetThreadErrorMode(oldMode, nullptr);
    return error;
}

} // namespace

std::optional<std::wstring> DefectOfDll(const std::wstring& path)
{
    const std::wstring openable = OpenablePath(path);
    const DWORD attributes = GetFileAttributesW(openable.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return L"is not there";
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return L"is a folder";
    const HANDLE opened = CreateFileW(openable.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return L"cannot be read: " + DescribeError(GetLastError());
    const File file(opened);
    if (const wchar_t* const defect = DefectOfHeaders(file))
        return defect;
    if (!IsUndamaged(openable))
        return L"is damaged: its checksum does not fit";
    if (const DWORD error = TryToLoad(openable); error != ERROR_SUCCESS)
        return L"cannot be loaded: " + DescribeError(error);
    return std::nullopt;
}

} // namespace Lumora
