#pragma once

#include <memory>

#include "targetsystem/TargetSystem.h"

namespace ZrHmiEventLogger {

/// The target system that is instantiated. It ends its subscription and its connection while the
/// object is still whole.
template <class Base>
class TargetSystemPlatformSpecific final : public Base {
    struct OnlyMake {};

public:
    template <class... Arguments>
    explicit TargetSystemPlatformSpecific(OnlyMake, Arguments&&... arguments)
        : Base(std::forward<Arguments>(arguments)...) {}
    ~TargetSystemPlatformSpecific() override { this->retire(Base::TimePoint::max()); }

    /// The sink is advised last, when there is a shared object to notify.
    template <class... Arguments>
    static std::shared_ptr<Base> make(Arguments&&... arguments) {
        auto target = std::make_shared<TargetSystemPlatformSpecific>(
            OnlyMake(), std::forward<Arguments>(arguments)...);
        target->subscribe();
        return target;
    }
};

}  // namespace ZrHmiEventLogger
