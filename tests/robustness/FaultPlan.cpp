#include "robustness/FaultPlan.h"

#include <stdexcept>
#include <utility>

namespace bridge_test {

namespace {

bool canHit(FaultKind fault, CallKind call) {
    switch (fault) {
        case FaultKind::none:
            return false;
        case FaultKind::failure:
            return call != CallKind::notification && call != CallKind::release &&
                   call != CallKind::attributeQuery;
        case FaultKind::exception:
        case FaultKind::foreignException:
            return call != CallKind::notification && call != CallKind::release;
        case FaultKind::noObject:
            return call == CallKind::handsOutObject || call == CallKind::notification;
        case FaultKind::noText:
            return call == CallKind::handsOutText;
        case FaultKind::disturbance:
            return call != CallKind::release;
        case FaultKind::swallowedNotification:
            return call == CallKind::notification;
        case FaultKind::forgottenRelease:
            return call == CallKind::release;
    }
    return false;
}

}  // namespace

FaultPlan& FaultPlan::instance() {
    static FaultPlan plan;
    return plan;
}

void FaultPlan::arm(Fault planned) {
    std::function<void()> release;
    {
        Lock lock(mutex);
        fault = std::move(planned);
        count = 0;
        hit.clear();
        release.swap(forgotten);
    }
    if (release)
        release();
}

void FaultPlan::forget(std::function<void()> release) {
    Lock lock(mutex);
    forgotten = std::move(release);
}

void FaultPlan::suspend(bool on) {
    Lock lock(mutex);
    suspended = on;
}

std::string FaultPlan::hitCall() const {
    Lock lock(mutex);
    return hit;
}

bool FaultPlan::counts(const char* call, CallKind kind, Fault& hitBy) {
    Lock lock(mutex);
    if (suspended || !canHit(fault.kind, kind) || ++count != fault.position)
        return false;
    hit = call;
    hitBy = fault;
    return true;
}

FaultPlan::Verdict FaultPlan::enter(const char* call, CallKind kind) {
    Fault now;
    if (!counts(call, kind, now))
        return Verdict::pass;
    switch (now.kind) {
        case FaultKind::failure:
            return Verdict::fail;
        case FaultKind::noObject:
        case FaultKind::noText:
            return Verdict::handOutNothing;
        case FaultKind::exception:
            throw std::runtime_error("the library failed");
        case FaultKind::foreignException:
            throw now.position;
        case FaultKind::swallowedNotification:
        case FaultKind::forgottenRelease:
            return Verdict::swallow;
        case FaultKind::disturbance:
            now.disturb();
            break;
        case FaultKind::none:
            break;
    }
    return Verdict::pass;
}

}  // namespace bridge_test
