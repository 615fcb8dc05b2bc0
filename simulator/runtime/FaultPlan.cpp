#include "simulator/runtime/FaultPlan.h"

#include <algorithm>

#include "simulator/runtime/ProtocolError.h"

namespace ZrSimulator {

namespace {

bool affects(const AffectedCalls& calls, Operation operation) {
    return !calls || *calls == operation;
}

std::size_t indexOf(Operation operation) {
    return static_cast<std::size_t>(operation);
}

template <class Values, class Value>
void assign(Values& values, const AffectedCalls& calls, const Value& value) {
    if (calls)
        values[indexOf(*calls)] = value;
    else
        values.fill(value);
}

}  // namespace

HRESULT FaultPlan::enter(Operation operation) {
    return armed ? enterWithFaults(operation) : S_OK;
}

HRESULT FaultPlan::enterWithFaults(Operation operation) {
    Lock lock(mutex);
    if (closed)
        return S_OK;
    const auto deadline = Clock::now() + timeout;
    const HRESULT planned = takeFault(operation);
    HRESULT hr = waitWhilePaused(lock, operation, deadline);
    if (SUCCEEDED(hr))
        hr = waitFor(lock, Clock::now() + delays[indexOf(operation)], deadline);
    return FAILED(hr) ? hr : planned;
}

HRESULT FaultPlan::takeFault(Operation operation) {
    const auto due = std::find_if(faults.begin(), faults.end(), [&](const FailAction& fault) {
        return affects(fault.calls, operation) && fault.skip == 0;
    });
    if (due == faults.end()) {
        for (auto& fault : faults)
            fault.skip -= affects(fault.calls, operation) ? 1u : 0u;
        return S_OK;
    }
    const HRESULT hr = due->hresult;
    if (--due->times == 0) {
        faults.erase(due);
        updateArmed();
    }
    return hr;
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

void FaultPlan::add(const FailAction& fault) {
    Lock lock(mutex);
    faults.push_back(fault);
    updateArmed();
}

void FaultPlan::delay(const DelayAction& delay) {
    Lock lock(mutex);
    assign(delays, delay.calls, delay.time);
    updateArmed();
}

void FaultPlan::pause(AffectedCalls calls) {
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
