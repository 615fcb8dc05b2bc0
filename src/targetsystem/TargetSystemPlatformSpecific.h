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

    /// Shared from the beginning, as its sink is advised while it is being prepared.
    template <class... Arguments>
    static std::shared_ptr<Base> make(Arguments&&... arguments) {
        return std::make_shared<TargetSystemPlatformSpecific>(
            OnlyMake(), std::forward<Arguments>(arguments)...);
    }
};

}  // namespace ZrHmiEventLogger
