#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "server/events/EventBook.h"
#include "server/http/Target.h"
#include "server/targets/TargetBook.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// A request for events: a filter, a text that they contain, the locale of their texts, a page.
class EventSearch {
public:
    struct Hit {
        EventRecordPtr event;  ///< null for a gap
        TextsPtr texts;        ///< null without a locale, and when they are not known
        GapPtr gap = {};
    };
    struct Result {
        std::size_t total = 0;
        std::size_t textsPending = 0;  ///< events whose texts were wanted and are not known yet
        std::vector<Hit> hits;
    };

    /// Throws RequestError 400.
    explicit EventSearch(const Query& query);

    /// A text is looked for without regard to the case of A to Z, in the event's name and text
    /// parameters, and with a locale in its localized text as well, as far as that is known. Waits
    /// only with a locale, and for the texts only.
    Result run(const EventBook& book, const TargetBook& targets, EventTextService& service) const;
    bool isLocalized() const noexcept { return !locale.empty(); }

private:
    Result select(const EventBook& book, EventTextService& service, std::size_t first,
                  std::size_t size) const;
    bool isBefore(const Hit& a, const Hit& b) const;
    std::vector<TextsPtr> textsOf(const std::vector<EventRecordPtr>& events,
                                  EventTextService& service) const;

    EventFilter filter;
    std::string text;    ///< in small letters; empty: any
    std::string locale;  ///< empty: none
    bool withGaps;
    std::size_t offset;
    std::size_t limit;
    std::chrono::milliseconds wait{0};  ///< for texts
};

}  // namespace hmi
