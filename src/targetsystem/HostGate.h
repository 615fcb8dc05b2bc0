#pragma once

#include <atomic>
#include <chrono>

namespace ZrHmiEventLogger {

/// A way to the host, which is closed for good: that of a target system when it is retired, the
/// extension's at its shutdown. What comes back late does not pass. Any thread.
class HostGate {
public:
    /// A call of the host, for as long as it runs. Falsy: the host must not be called any more.
    class Call {
    public:
        explicit Call(HostGate& gate) : gate(gate), passed(gate.enter()) {}
        ~Call() {
            if (passed)
                gate.leave();
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        explicit operator bool() const { return passed; }

    private:
        HostGate& gate;
        const bool passed;
    };

    /// Returns when the running calls are over, or at the deadline.
    void close(std::chrono::steady_clock::time_point deadline);

private:
    bool enter() {
        ++running;
        if (!closed)
            return true;
        --running;
        return false;
    }
    void leave() { --running; }

    std::atomic<bool> closed = false;
    std::atomic<int> running = 0;
};

}  // namespace ZrHmiEventLogger
