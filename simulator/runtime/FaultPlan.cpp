#include "simulator/runtime/FaultPlan.h"

#include <algorithm>
#include <utility>

#include "simulator/runtime/ProtocolError.h"

namespace ZrSimulator {

namespace {

std::size_t indexOf(Operation operation) {
    return static_cast<std::size_t>(operation);
}

template <class Values, class Value>
void assign(Values& values, const AffectedCalls& calls, const Value& value) {
    for (std::size_t i = 0; i < values.size(); ++i)
        if (calls.test(i))
            values[i] = value;
}

std::optional<HRESULT> outcome(const FailAction& action) {
    switch (action.failure) {
        case Failure::none:
            break;
        case Failure::result:
            return action.hresult;
        case Failure::answersNothing:
            return S_OK;
        case Failure::exception:
            throw PlannedException("");
        case Failure::foreignException:
            throw PlannedForeignException();
    }
    return std::nullopt;
}

}  // namespace

std::optional<HRESULT> FaultPlan::enter(Operation operation) {
    return armed ? enterWithFaults(operation) : std::nullopt;
}

std::optional<HRESULT> FaultPlan::enterWithFaults(Operation operation) {
    std::optional<Fault> fault;
    Clock::time_point deadline;
    {
        Lock lock(mutex);
        if (closed)
            return std::nullopt;
        deadline = Clock::now() + timeout;
        fault = takeFault(operation);
    }
    if (fault && fault->meanwhile)
        fault->meanwhile();
    if (const HRESULT hr = wait(operation, deadline); FAILED(hr))
        return hr;
    return fault ? outcome(fault->action) : std::nullopt;
}

std::optional<FaultPlan::Fault> FaultPlan::takeFault(Operation operation) {
    const auto affects = [operation](const Fault& fault) {
        return fault.action.calls.test(indexOf(operation));
    };
    const auto due = std::find_if(faults.begin(), faults.end(), [&](const Fault& fault) {
        return affects(fault) && fault.action.skip == 0;
    });
    if (due == faults.end()) {
        for (auto& fault : faults)
            fault.action.skip -= affects(fault) ? 1u : 0u;
        return std::nullopt;
    }
    struck.count(operation);
    Fault taken = *due;
    if (--due->action.times == 0) {
        faults.erase(due);
        updateArmed();
    }
    return taken;
}

HRESULT FaultPlan::wait(Operation operation, Clock::time_point deadline) {
    if (!reachesRuntime(operation))
        return S_OK;
    Lock lock(mutex);
    const HRESULT hr = waitWhilePaused(lock, operation, deadline);
    return FAILED(hr) ? hr : waitFor(lock, Clock::now() + delays[indexOf(operation)], deadline);
}

HRESULT FaultPlan::waitWhilePaused(Lock<Mutex>& lock, Operation operation,
                                   Clock::time_point deadline) {
    const unsigned before = resumes;
    while (paused[indexOf(operation)] && resumes == before && !closed) {
        if (changed.wait_until(lock, deadline) == std::cv_status::timeout)
            return timeoutElapsed;
    }
    return closed ? portNotOpen : S_OK;
}

HRESULT FaultPlan::waitFor(Lock<Mutex>& lock, Clock::time_point end, Clock::time_point deadline) {
    while (!closed && Clock::now() < end) {
        if (end > deadline && Clock::now() >= deadline)
            return timeoutElapsed;
        changed.wait_until(lock, std::min(end, deadline));
    }
    return closed ? portNotOpen : S_OK;
}

void FaultPlan::setTimeout(std::chrono::milliseconds time) {
    Lock lock(mutex);
    timeout = time;
}

void FaultPlan::add(const FailAction& fault, std::function<void()> meanwhile) {
    Lock lock(mutex);
    faults.push_back({fault, std::move(meanwhile)});
    updateArmed();
}

void FaultPlan::delay(const DelayAction& delay) {
    Lock lock(mutex);
    assign(delays, delay.calls, delay.time);
    updateArmed();
}

void FaultPlan::pause(const AffectedCalls& calls) {
    Lock lock(mutex);
    assign(paused, calls, true);
    updateArmed();
}

void FaultPlan::resume() {
    {
        Lock lock(mutex);
        paused.fill(false);
        ++resumes;
        updateArmed();
    }
    changed.notify_all();
}

void FaultPlan::close() {
    {
        Lock lock(mutex);
        closed = true;
        updateArmed();
    }
    changed.notify_all();
}

void FaultPlan::updateArmed() {
    const auto isDelayed = [](std::chrono::milliseconds time) { return time.count() != 0; };
    const auto isPaused = [](bool flag) { return flag; };
    armed = !closed && (!faults.empty() || std::any_of(delays.begin(), delays.end(), isDelayed) ||
                        std::any_of(paused.begin(), paused.end(), isPaused));
}

}  // namespace ZrSimulator
