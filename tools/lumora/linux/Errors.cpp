#include "lumora/linux/Errors.h"

#include "lumora/files/NameText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <system_error>

namespace Lumora {

namespace {

struct NamedError
{
    int error;
    const wchar_t* words;
};

/// The words are the same on all systems.
constexpr NamedError namedErrors[] = {
    {ENOENT, L"the file was not found"},
    {ENOTDIR, L"the folder was not found"},
    {EACCES, L"access is denied"},
    {EPERM, L"access is denied"},
    {ENOSPC, L"the disk is full"},
    {EDQUOT, L"the disk is full"},
    {EWOULDBLOCK, L"another program holds the file"},
    {EEXIST, L"the file exists"},
    {ENAMETOOLONG, L"the name is too long"},
    {ENOMEM, L"memory is exhausted"},
    {EIO, L"the device has failed"},
};

} // namespace

std::wstring DescribeError(int error)
{
    const auto* const named = std::ranges::find(namedErrors, error, &NamedError::error);
    const std::wstring words =
        named != std::end(namedErrors) ? named->words : TextOfName(std::generic_category().message(error));
    const char* const name = strerrorname_np(error);
    return words + L" (" + (name ? TextOfName(name) : std::to_wstring(error)) + L")";
}

void ThrowLastError()
{
    throw Failure{DescribeError(errno)};
}

} // namespace Lumora
