#pragma once

#include <functional>
#include <string>

#include "platform/Mutex.h"

namespace bridge_test {

/// What happens to the one call that is hit.
enum class FaultKind {
    none,
    failure,           ///< it answers a failing HRESULT
    noObject,          ///< it answers S_OK without the object that it should hand out
    noText,            ///< the same of a text, which is then an empty one
    exception,         ///< it throws a std::runtime_error
    foreignException,  ///< it throws what is no standard exception
    disturbance,       ///< the world changes at that very moment; the call goes on
    // Defects of the library itself, to show that the checks see something.
    swallowedNotification,
    forgottenRelease,
};

/// Kinds of calls: which of them a fault can hit depends on the fault.
enum class CallKind {
    plain,
    handsOutObject,
    attributeQuery,  ///< for what an event may lack: the extension takes a failure for a lack
    handsOutText,
    notification,
    release,
};

struct Fault {
    FaultKind kind = FaultKind::none;
    unsigned position = 0;  ///< of the call that is hit, counted from 1 among those it can hit
    std::function<void()> disturb = {};
};

/// Counts the calls that cross between the extension and the proxy library, and decides which of
/// them goes wrong. One for the process, as is the library. Any thread.
class FaultPlan {
public:
    enum class Verdict { pass, fail, handOutNothing, swallow };

    static FaultPlan& instance();

    /// Counts from the beginning. What the plan before has spoilt is repaired.
    void arm(Fault fault);
    /// While suspended, calls are neither counted nor hit.
    void suspend(bool on);
    /// The call that was hit; empty while none was.
    std::string hitCall() const;

    /// Every call begins here. Throws when it is to end with an exception.
    Verdict enter(const char* call, CallKind kind);

    /// Keeps the release that was forgotten, to be made up for by `arm`.
    void forget(std::function<void()> release);

private:
    /// True for the one call that is hit.
    bool counts(const char* call, CallKind kind, Fault& hit);

    mutable Mutex mutex;
    Fault fault GUARDED_BY(mutex);
    unsigned count GUARDED_BY(mutex) = 0;
    bool suspended GUARDED_BY(mutex) = false;
    std::string hit GUARDED_BY(mutex);
    std::function<void()> forgotten GUARDED_BY(mutex);
};

}  // namespace bridge_test
