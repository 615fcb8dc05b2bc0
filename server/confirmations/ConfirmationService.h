#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "server/confirmations/Deadlines.h"
#include "server/events/EventBook.h"
#include "server/metrics/Metrics.h"

namespace hmi {

/// What an operator saw, and wants to have confirmed.
struct ConfirmationWish {
    EventId id;
    std::optional<ZrHmiSrv::Timestamp> timeRaised;  ///< none: whichever occurrence there is
};

/// Who wants it.
struct ConfirmationAsker {
    std::string by;
    std::string comment;
};

/// An HTTP status, and with 200 what the extension answered.
struct ConfirmationOutcome {
    unsigned status = 200;
    std::optional<ZrHmiSrv::ErrorValue> result = {};
    std::string text = {};
    EventRecordPtr current = {};  ///< what the alarm is now, when it is not what was seen
};

/// Takes operators' confirmations to the logger, and writes on the event what becomes of them.
/// Thread-safe.
class ConfirmationService {
public:
    /// Asks the extension, as long as that takes; nothing when it takes no confirmations.
    using Confirm = std::function<std::optional<ZrHmiSrv::ResultPair>(const ZrHmiSrv::Alarm&)>;
    /// How long the logger has for it.
    using Patience = std::function<std::chrono::milliseconds()>;

    ConfirmationService(EventBook& book, Metrics& metrics, Confirm confirm, Patience patience);

    /// Waits for the extension.
    ConfirmationOutcome confirm(const ConfirmationWish& wish, const ConfirmationAsker& asker);
    std::chrono::milliseconds patience() const { return patienceOf(); }

private:
    ConfirmationOutcome begin(const ConfirmationWish& wish, const ConfirmationAsker& asker,
                              std::uint64_t number);
    void settle(EventId id, std::uint64_t number, const ZrHmiSrv::ResultPair& answer);
    void expire(EventId id, std::uint64_t number);

    EventBook& book;
    Metrics& metrics;
    const Confirm ask;
    const Patience patienceOf;
    std::atomic<std::uint64_t> numbers = 0;
    Deadlines deadlines;  ///< last: it calls what stands above
};

}  // namespace hmi
