#include "lumora/pictures/DecoderLines.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace Lumora {

namespace {

/// What the object of this thread has collected; null for a thread that has none.
thread_local std::vector<std::string>* collected = nullptr;

/// Without a debugger, each line arrives as an exception that carries its text in the ANSI code page. Other
/// components write lines too.
LONG CALLBACK CollectLine(EXCEPTION_POINTERS* pointers)
{
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    if (record.ExceptionCode != DBG_PRINTEXCEPTION_C || record.NumberParameters < 2)
        return EXCEPTION_CONTINUE_SEARCH;
    // Exceptions carry their addresses as numbers.
    const auto* const text = reinterpret_cast<const char*>( // NOLINT(performance-no-int-to-ptr)
        record.ExceptionInformation[1]);
    const std::string_view line = text;
    if (!line.starts_with("[Lumora] "))
        return EXCEPTION_CONTINUE_SEARCH;
    if (collected)
        collected->emplace_back(line);
    return EXCEPTION_CONTINUE_EXECUTION;
}

std::wstring FromAnsi(const std::string& text)
{
    const auto length = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0);
    std::wstring wide(static_cast<size_t>(needed), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), needed);
    return wide;
}

} // namespace

DecoderLines::DecoderLines() : handler(AddVectoredExceptionHandler(1, CollectLine))
{
    collected = &lines;
}

DecoderLines::~DecoderLines()
{
    collected = nullptr;
    RemoveVectoredExceptionHandler(handler);
}

std::vector<std::wstring> DecoderLines::Take()
{
    std::vector<std::wstring> taken;
    std::transform(lines.begin(), lines.end(), std::back_inserter(taken), FromAnsi);
    lines.clear();
    return taken;
}

bool DecoderLines::ForgetLast(std::wstring_view line)
{
    if (!collected || collected->empty() || FromAnsi(collected->back()) != line)
        return false;
    collected->pop_back();
    return true;
}

} // namespace Lumora
