#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "host/Listeners.h"
#include "targetsystem/TextLookup.h"

namespace ZrHmiEventLogger {

/// Localizes events: alarms and messages alike. Keeps nothing between calls. Any thread.
class EventLocalizer {
public:
    /// The texts of the target system of a name, null when there is none.
    using FindTexts = std::function<std::shared_ptr<TextLookup>(std::string_view targetName)>;

    explicit EventLocalizer(FindTexts findTexts) : findTexts(std::move(findTexts)) {}

    /// Writes the event's text into `localizedText` and what else is known in the locale's language
    /// into the item's parameters. Unless it succeeds, neither is changed; nor when it throws,
    /// which the item and `findTexts` may make it do.
    ZrHmiSrv::ResultPair localize(const char* locale, ZrHmiSrv::ILocalizable& item,
                                  ZrHmiSrv::String& localizedText) const;

private:
    FindTexts findTexts;
};

}  // namespace ZrHmiEventLogger
