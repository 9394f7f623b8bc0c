#include "lumora/pictures/DecoderLines.h"

#include "platform/Platform.h"

#include <utility>

namespace Lumora {

namespace {

/// What the object of this thread has collected.
thread_local std::vector<std::wstring>* collected = nullptr;

} // namespace

DecoderLines::DecoderLines()
{
    collected = &lines;
    SetDebugStringSink([](const wchar_t* line) { collected->emplace_back(line); });
}

DecoderLines::~DecoderLines()
{
    SetDebugStringSink(nullptr);
    collected = nullptr;
}

std::vector<std::wstring> DecoderLines::Take()
{
    return std::exchange(lines, {});
}

bool DecoderLines::ForgetLast(std::wstring_view line)
{
    if (!collected || collected->empty() || collected->back() != line)
        return false;
    collected->pop_back();
    return true;
}

} // namespace Lumora
