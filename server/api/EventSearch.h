#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "server/api/EventQuery.h"
#include "server/api/TextFinder.h"
#include "server/events/EventBook.h"
#include "server/targets/TargetBook.h"
#include "server/texts/EventTextService.h"

namespace hmi {

/// Finds the events that a query selects.
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

    EventSearch(EventQuery query, const EventBook& book, const TargetBook& targets,
                EventTextService& service, SearchTexts& searchTexts)
        : query(std::move(query)),
          book(book),
          targets(targets),
          service(service),
          searchTexts(searchTexts) {}

    /// The page that was asked for. A text is looked for in what a row shows and in the event's
    /// other text parameters, without regard to case; in localized texts as far as they are known.
    /// Waits only with a locale, and for the texts only.
    Result page() const;
    /// All events that the query selects, without gaps, and with texts only where they decide.
    Result all() const;
    /// Fetches the texts of these, in the locale asked for; those that are not to be had in time
    /// are pending.
    void addTexts(Result& result) const;

private:
    Result events(std::size_t first, std::size_t size) const;
    Result found() const;
    void fetchTexts(Result& result) const;
    void countPending(Result& result) const;
    void dropOthers(Result& result) const;
    bool contains(const Hit& hit, TextFinder& finder) const;
    void sortByName(std::vector<Hit>& hits) const;
    bool isBefore(const Hit& a, const Hit& b) const;

    const EventQuery query;
    const EventBook& book;
    const TargetBook& targets;
    EventTextService& service;
    SearchTexts& searchTexts;
};

}  // namespace hmi
