#include "server/statistics/Flood.h"

#include "server/statistics/RaiseRates.h"

namespace hmi {

using ZrHmiSrv::Timestamp;

void Flood::add(Timestamp raised) {
    on = isOn(raised);
    newest[count++ % newest.size()] = raised;
    on = on || reaches(beginsWith, raised);
}

bool Flood::isOn(Timestamp now) const {
    return on && reaches(lastsWith, now);
}

bool Flood::reaches(std::size_t alarms, Timestamp now) const {
    return count >= alarms &&
           now.nanoseconds() - newest[(count - alarms) % newest.size()].nanoseconds() <
               RaiseRates::period;
}

}  // namespace hmi
