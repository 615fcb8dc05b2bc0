#include "simulator/plant/EventCatalog.h"

namespace ZrSimulator {

const EventClass* EventCatalog::findClass(const GUID& id) const {
    const auto found = classes.find(id);
    return found == classes.end() ? nullptr : &found->second;
}

const EventDefinition* EventCatalog::findEvent(const GUID& eventClass, ULONG eventId) const {
    const auto* owner = findClass(eventClass);
    if (!owner)
        return nullptr;
    const auto found = owner->events.find(eventId);
    return found == owner->events.end() ? nullptr : &found->second;
}

const std::string* EventCatalog::findSource(const std::string& name, LCID lcid) const {
    const auto found = sources.find(name);
    return found == sources.end() ? nullptr : found->second.find(lcid);
}

}  // namespace ZrSimulator
