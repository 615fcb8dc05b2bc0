#pragma once

#include <string>
#include <vector>

#include "server/events/EventBook.h"
#include "server/extension/ExtensionCalls.h"
#include "server/http/Target.h"

namespace hmi {

/// A request for events: a filter, a text that they contain, the locale of their texts, a page.
class EventSearch {
public:
    struct Hit {
        EventRecordPtr event;
        EventTexts texts;  ///< meaningful with a locale only
    };
    struct Result {
        std::size_t total = 0;
        std::vector<Hit> hits;
    };

    /// Throws RequestError 400.
    explicit EventSearch(const Query& query);

    /// A text is looked for without regard to the case of A to Z, in the event's name and text
    /// parameters, and with a locale in its localized text as well. Calls the extension only
    /// with a locale.
    Result run(const EventBook& book, ExtensionCalls& extension) const;

private:
    class Texts;

    Result page(const EventBook& book, Texts& texts) const;
    Result searchText(const EventBook& book, Texts& texts) const;

    EventFilter filter;
    std::string text;    ///< in small letters; empty: any
    std::string locale;  ///< empty: none
    std::size_t offset;
    std::size_t limit;
};

}  // namespace hmi
