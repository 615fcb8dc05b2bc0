#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <optional>
#include <stdexcept>
#include <vector>

#include "platform/Mutex.h"
#include "simulator/plant/Action.h"
#include "simulator/runtime/CallCounters.h"

namespace ZrSimulator {

/// Marks the exceptions that are meant for the client.
struct PlannedThrow {};
struct PlannedException : std::runtime_error, PlannedThrow {
    using std::runtime_error::runtime_error;
};
struct PlannedForeignException : PlannedThrow {};

/// What is to go wrong with the calls of one runtime: which fail, are slowed down or are held.
/// Any thread; no lock is held while a call waits.
class FaultPlan {
public:
    /// Every call begins here. An answer is the call's own: it does nothing more. A call that
    /// has to wait for longer than the time-out ends with that error, and one that waits when
    /// the plan is closed as if it were not connected. Throws what is planned to be thrown.
    std::optional<HRESULT> enter(Operation operation);

    void setTimeout(std::chrono::milliseconds time);

    /// `meanwhile` may be empty; called with no lock held.
    void add(const FailAction& fault, std::function<void()> meanwhile);
    void delay(const DelayAction& delay);
    void pause(const AffectedCalls& calls);
    /// Lets go of all calls that are held and holds no further ones.
    void resume();
    /// Ends all waiting; from now on nothing goes wrong.
    void close();

    /// The calls that met a planned failure.
    CallCounters struck;

private:
    using Clock = std::chrono::steady_clock;
    template <class T>
    using PerOperation = std::array<T, operationCount>;

    struct Fault {
        FailAction action;
        std::function<void()> meanwhile;
    };

    std::optional<HRESULT> enterWithFaults(Operation operation);
    std::optional<Fault> takeFault(Operation operation) REQUIRES(mutex);
    HRESULT wait(Operation operation, Clock::time_point deadline) EXCLUDES(mutex);
    HRESULT waitWhilePaused(Lock<Mutex>& lock, Operation operation, Clock::time_point deadline)
        REQUIRES(mutex);
    HRESULT waitFor(Lock<Mutex>& lock, Clock::time_point end, Clock::time_point deadline)
        REQUIRES(mutex);
    void updateArmed() REQUIRES(mutex);

    /// Whether anything is planned: calls of a healthy runtime take no lock.
    std::atomic<bool> armed = false;

    Mutex mutex;
    std::condition_variable_any changed;
    std::vector<Fault> faults GUARDED_BY(mutex);
    PerOperation<std::chrono::milliseconds> delays GUARDED_BY(mutex){};
    PerOperation<bool> paused GUARDED_BY(mutex){};
    /// Counts resumes, so that a call that is paused again at once is let go all the same.
    unsigned resumes GUARDED_BY(mutex) = 0;
    std::chrono::milliseconds timeout GUARDED_BY(mutex){5000};
    bool closed GUARDED_BY(mutex) = false;
};

}  // namespace ZrSimulator
