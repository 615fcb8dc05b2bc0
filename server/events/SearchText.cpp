#include "server/events/SearchText.h"

#include <algorithm>
#include <functional>
#include <string_view>
#include <utility>

#include "server/unicode/CaseFolding.h"

namespace hmi {

SearchTextPtr SearchTexts::share(std::string text) {
    const std::size_t hash = std::hash<std::string>()(text);
    Lock lock(mutex);
    auto& known = shared[hash];
    SearchTextPtr held = known.lock();
    if (held && *held == text)
        return held;
    auto made = std::make_shared<const std::string>(std::move(text));
    if (!held)
        known = made;
    if (shared.size() >= sweepAt) {
        erase_if(shared, [](const auto& entry) { return entry.second.expired(); });
        sweepAt = std::max(fewTexts, 2 * shared.size());
    }
    return made;
}

std::string LazySearchText::textOf(const ZrHmiSrv::Event& event) {
    std::string text(event.name().view());
    const ZrHmiSrv::Value& parameters = event.payload();
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry) {
        if (entry->type() == ZrHmiSrv::ValueType::string)
            (text += '\0').append(static_cast<const char*>(*entry), entry->size());
    }
    return foldCase(text);
}

}  // namespace hmi
