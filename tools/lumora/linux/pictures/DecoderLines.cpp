#include "lumora/pictures/DecoderLines.h"

#include "platform/Platform.h"

namespace Lumora {

void DecoderLines::Listen()
{
    SetDebugStringSink([](const wchar_t* line) { Add(line); });
}

void DecoderLines::StopListening() noexcept
{
    SetDebugStringSink(nullptr);
}

} // namespace Lumora
