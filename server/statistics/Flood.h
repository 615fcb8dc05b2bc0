#pragma once

#include <array>
#include <cstddef>

#include "host/Time.h"

namespace hmi {

/// Whether alarms come faster than an operator can follow: from 10 within 10 minutes on, until they
/// are fewer than 5 within 10 minutes. Not synchronised.
class Flood {
public:
    /// In order of time.
    void add(ZrHmiSrv::Timestamp raised);
    bool isOn(ZrHmiSrv::Timestamp now) const;

private:
    /// Whether that many alarms were raised within the time before `now`.
    bool reaches(std::size_t alarms, ZrHmiSrv::Timestamp now) const;

    static constexpr std::size_t beginsWith = 10;
    static constexpr std::size_t lastsWith = 5;

    std::array<ZrHmiSrv::Timestamp, beginsWith> newest{};  ///< a ring
    std::size_t count = 0;
    bool on = false;
};

}  // namespace hmi
