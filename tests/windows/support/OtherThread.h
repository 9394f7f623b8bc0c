#pragma once

#include <functional>

/// Does the work on a thread of its own and waits for it. A thread that waits for a lock which nobody will
/// leave cannot be ended, so work that takes far too long ends the test program, with a message.
void OnAnotherThread(const std::function<void()>& work);

/// Does the work on several threads at once. Each is given its number.
void OnThreads(unsigned count, const std::function<void(unsigned number)>& work);
