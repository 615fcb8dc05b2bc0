/// Mutexes whose use clang checks (-Wthread-safety): the standard ones are not annotated.
#pragma once

#include <atomic>
#include <mutex>

#if defined(__clang__)
#define BRIDGE_ANNOTATE(x) __attribute__((x))
#else
#define BRIDGE_ANNOTATE(x)
#endif
#define CAPABILITY(x) BRIDGE_ANNOTATE(capability(x))
#define SCOPED_CAPABILITY BRIDGE_ANNOTATE(scoped_lockable)
#define GUARDED_BY(x) BRIDGE_ANNOTATE(guarded_by(x))
#define REQUIRES(...) BRIDGE_ANNOTATE(requires_capability(__VA_ARGS__))
#define EXCLUDES(...) BRIDGE_ANNOTATE(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) BRIDGE_ANNOTATE(acquire_capability(__VA_ARGS__))
#define TRY_ACQUIRE(...) BRIDGE_ANNOTATE(try_acquire_capability(__VA_ARGS__))
#define RELEASE(...) BRIDGE_ANNOTATE(release_capability(__VA_ARGS__))
#define ACQUIRED_BEFORE(...) BRIDGE_ANNOTATE(acquired_before(__VA_ARGS__))

template <class Native>
class CAPABILITY("mutex") AnnotatedMutex {
public:
    void lock() ACQUIRE() { native.lock(); }
    bool try_lock() TRY_ACQUIRE(true) { return native.try_lock(); }
    void unlock() RELEASE() { native.unlock(); }

private:
    Native native;
};

namespace detail {

class TryFlag {
public:
    bool try_lock() { return !taken.test_and_set(std::memory_order_acquire); }
    void unlock() { taken.clear(std::memory_order_release); }

private:
    std::atomic_flag taken;
};

}  // namespace detail

using Mutex = AnnotatedMutex<std::mutex>;
using RecursiveMutex = AnnotatedMutex<std::recursive_mutex>;
/// For what is held briefly and can be done without while another thread has it: cannot be waited
/// for.
using TryMutex = AnnotatedMutex<detail::TryFlag>;

/// Holds a mutex until the end of its scope, or until `unlock`.
template <class M>
class SCOPED_CAPABILITY Lock {
public:
    explicit Lock(M& mutex) ACQUIRE(mutex) : mutex(mutex) { mutex.lock(); }
    /// Takes over a mutex that this thread holds, after a `try_lock`.
    Lock(M& mutex, std::adopt_lock_t) REQUIRES(mutex) : mutex(mutex) {}
    ~Lock() RELEASE() {
        if (held)
            mutex.unlock();
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void unlock() RELEASE() {
        held = false;
        mutex.unlock();
    }
    void lock() ACQUIRE() {
        mutex.lock();
        held = true;
    }

private:
    M& mutex;
    bool held = true;
};
