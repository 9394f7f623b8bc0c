#include "lumora/pictures/DecoderLines.h"

#include <utility>

namespace Lumora {

namespace {

/// What the object of this thread has collected; null for a thread that has none.
thread_local std::vector<std::wstring>* collected = nullptr;

} // namespace

DecoderLines::DecoderLines()
{
    collected = &lines;
    Listen();
}

DecoderLines::~DecoderLines()
{
    StopListening();
    collected = nullptr;
}

std::vector<std::wstring> DecoderLines::Take()
{
    return std::exchange(lines, {});
}

void DecoderLines::Add(std::wstring line)
{
    if (collected)
        collected->push_back(std::move(line));
}

bool DecoderLines::ForgetLast(std::wstring_view line)
{
    if (!collected || collected->empty() || collected->back() != line)
        return false;
    collected->pop_back();
    return true;
}

} // namespace Lumora
