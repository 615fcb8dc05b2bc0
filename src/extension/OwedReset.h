#pragma once

#include <atomic>
#include <functional>

namespace ZrHmiEventLogger {

/// Resets of the host's events that are asked for, one after the other: those asked for while one
/// is under way become one more. A reset that fails stays owed. Any thread; throws nothing.
class OwedReset {
public:
    /// `send` tells the host, or throws.
    explicit OwedReset(std::function<void()> send) : send(std::move(send)) {}

    /// Sends one, or leaves that to the thread that is sending.
    void request() noexcept {
        requested = true;
        serve();
    }
    /// Leaves one to the next `settle`, also while one is under way: from inside `send`, what
    /// fails every time would be sent without end.
    void owe() noexcept { owed = true; }
    /// Tries again what is owed still.
    void settle() noexcept {
        if (owed)
            requested = true;
        serve();
    }

private:
    void serve() noexcept;
    bool trySend() noexcept;

    const std::function<void()> send;
    std::atomic<bool> requested = false;
    std::atomic<bool> owed = false;
    std::atomic<bool> sending = false;
};

}  // namespace ZrHmiEventLogger
