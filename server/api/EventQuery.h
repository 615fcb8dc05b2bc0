#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "server/events/EventFilter.h"
#include "server/http/Target.h"

namespace hmi {

/// A time that a request names, none where it does not; throws RequestError 400.
std::optional<ZrHmiSrv::Timestamp> timeOf(const Query& query, std::string_view name);

/// In which language a request wants texts, and how long it waits for them.
struct TextWish {
    /// Reads `locale` and `wait`; throws RequestError 400.
    explicit TextWish(const Query& query);

    static constexpr std::chrono::milliseconds maxWait{5000};

    std::string locale;  ///< empty: none
    std::chrono::milliseconds wait;
};

/// What a request for events asks for: a filter, a text that they contain, the locale of their
/// texts, an order, a page.
struct EventQuery {
    /// Reads what selects events; throws RequestError 400. `further`: names that the request may
    /// have besides. The limit is `usualLimit` unless told.
    EventQuery(const Query& query, Query::Names further, std::uint64_t usualLimit);

    bool isLocalized() const noexcept { return !texts.locale.empty(); }

    static constexpr std::uint64_t maxLimit = 100'000;

    EventFilter filter;
    bool byName = false;  ///< ordered by what the row shows, in the place of the filter's order
    bool nameReversed = false;
    std::string text;  ///< folded; empty: any
    bool withGaps;
    std::size_t offset;
    std::size_t limit;
    TextWish texts;
    bool everyText = false;  ///< as many texts as come in that time, not only those of a list

private:
    void readOrder(const Query& query);
};

}  // namespace hmi
