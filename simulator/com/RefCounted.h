#pragma once

#include <atomic>

#include <boost/smart_ptr/intrusive_ptr.hpp>

#include "platform/Automation.h"

namespace ZrSimulator {

/// An object that lives as long as anyone refers to it, be it a client through AddRef or the
/// library itself through a Ref. Created with `new` and put into a Ref at once.
class RefCounted {
public:
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

protected:
    RefCounted() = default;
    virtual ~RefCounted() = default;

    ULONG retain() { return count.fetch_add(1, std::memory_order_relaxed) + 1; }
    ULONG drop() {
        const ULONG left = count.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0)
            delete this;
        return left;
    }

private:
    friend void intrusive_ptr_add_ref(RefCounted* object) { object->retain(); }
    friend void intrusive_ptr_release(RefCounted* object) { object->drop(); }

    std::atomic<ULONG> count = 0;
};

/// A reference of the library's own, which liveObjects does not count.
template <class T>
using Ref = boost::intrusive_ptr<T>;

}  // namespace ZrSimulator
