#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Lumora {

/// Collects what the readers note on the thread that has made this object. A thread has one at a time.
class DecoderLines
{
public:
    DecoderLines();
    DecoderLines(const DecoderLines&) = delete;
    DecoderLines& operator=(const DecoderLines&) = delete;
    ~DecoderLines();

    /// The lines since the last call, in order.
    [[nodiscard]] std::vector<std::wstring> Take();

    /// Adds a line that was noted on this thread. Without an object, nobody wants it.
    static void Add(std::wstring line);

    /// Forgets the last line of this thread, if it is this one. Returns whether it was.
    static bool ForgetLast(std::wstring_view line);

private:
    /// Begins to pass the lines of this thread to Add, and ends that.
    void Listen();
    void StopListening() noexcept;

    /// What the system needs to end the collection, if it needs anything.
    void* handler = nullptr;
    std::vector<std::wstring> lines;
};

} // namespace Lumora
