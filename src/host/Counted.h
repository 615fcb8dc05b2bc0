#pragma once

#include <atomic>
#include <cstdint>

namespace ZrHmiSrv::detail {

/// Counts the owners of a shared node; a new or copied node has one. Thread-safe.
class Counted {
public:
    Counted() noexcept = default;
    Counted(const Counted&) noexcept {}
    Counted& operator=(const Counted&) = delete;

    void retain() const noexcept {
        if (!is_permanent())
            owners.fetch_add(1, std::memory_order_relaxed);
    }
    /// True when that was the last owner: the caller deletes the node.
    bool release() const noexcept {
        return unique() ||
               (!is_permanent() && owners.fetch_sub(1, std::memory_order_acq_rel) == 1);
    }
    /// Is never deleted, and its owners are not counted: threads that share it write nothing.
    void make_permanent() noexcept { owners.store(permanent, std::memory_order_relaxed); }
    /// Acquires, so that what former owners did with the node has happened before a change of it.
    bool unique() const noexcept { return owners.load(std::memory_order_acquire) == 1; }

protected:
    ~Counted() = default;

private:
    static constexpr std::uint32_t permanent = 0;  // no node that can be reached has no owners
    bool is_permanent() const noexcept {
        return owners.load(std::memory_order_relaxed) == permanent;
    }

    mutable std::atomic<std::uint32_t> owners{1};
};

/// A node that its owners share until one of them changes it. While it is exposed, a reference
/// into it is in the hands of its only owner's user, and it must be copied instead of shared.
class Shareable : public Counted {
public:
    Shareable() noexcept = default;
    Shareable(const Shareable&) noexcept : Counted() {}

    bool is_exposed() const noexcept { return exposed; }
    /// Only by the only owner.
    void expose() noexcept { exposed = true; }
    /// The references handed out are no longer valid.
    void seal() noexcept {
        if (exposed)
            exposed = false;
    }

protected:
    ~Shareable() = default;

private:
    bool exposed = false;
};

}  // namespace ZrHmiSrv::detail
