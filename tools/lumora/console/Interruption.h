#pragma once

namespace Lumora {

/// Lets a person end a long run with Ctrl+C, or with Ctrl+Break, without half-written files: while an object
/// exists, the first time only asks the run to stop, and the second time ends the program at once. A closed
/// terminal, and the end of the session, ask, too. One at a time.
class Interruption
{
public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    /// Whether the run is to stop. Any thread may ask.
    [[nodiscard]] static bool IsWanted() noexcept;
};

} // namespace Lumora
