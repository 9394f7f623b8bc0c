#include "lumora/console/Failure.h"

#include <array>
#include <cwchar>
#include <exception>
#include <string_view>

namespace Lumora {

std::wstring HexText(uint32_t number)
{
    std::array<wchar_t, 11> text = {};
    std::swprintf(text.data(), text.size(), L"0x%08lX", static_cast<unsigned long>(number));
    return text.data();
}

std::optional<std::wstring> FailureOf(const std::function<void()>& work)
try
{
    work();
    return std::nullopt;
}
catch (const Failure& failure)
{
    return failure.text;
}
catch (const std::exception& exception)
{
    // The decoder passes the exception of exhausted memory on to its host.
    const std::string_view text = exception.what();
    return L"an exception ended the work: " + std::wstring(text.begin(), text.end());
}

void WithName(const std::wstring& name, const std::function<void()>& work)
try
{
    work();
}
catch (const Failure& failure)
{
    throw Failure{name + L": " + failure.text};
}

} // namespace Lumora
