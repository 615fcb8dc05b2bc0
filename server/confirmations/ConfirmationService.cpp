#include "server/confirmations/ConfirmationService.h"

#include <utility>

namespace hmi {

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;

namespace {

const ResultPair noConfirmations(ErrorValue::operation_failed,
                                 "the extension takes no confirmations");

constexpr const char* targetIsLost = "the alarm's target system is lost";

bool isSeen(const EventRecord& event, const ConfirmationWish& wish) {
    return !wish.timeRaised || *wish.timeRaised == event.alarm()->time_raised();
}

/// The event with the next state of the confirmation of that number, as long as it is open.
EventRecordPtr advanced(const EventRecord& event, std::uint64_t number,
                        const std::function<void(Confirmation&)>& advance) {
    const ConfirmationPtr& held = event.confirmation;
    if (!held || held->number != number || held->state == ConfirmationState::confirmed ||
        held->state == ConfirmationState::failed)
        return nullptr;
    auto confirmation = std::make_shared<Confirmation>(*held);
    advance(*confirmation);
    auto record = std::make_shared<EventRecord>(event);
    record->confirmation = std::move(confirmation);
    return record;
}

}  // namespace

ConfirmationService::ConfirmationService(EventBook& book, Metrics& metrics, Confirm confirm,
                                         Patience patience)
    : book(book), metrics(metrics), ask(std::move(confirm)), patienceOf(std::move(patience)) {}

ConfirmationOutcome ConfirmationService::confirm(const ConfirmationWish& wish,
                                                 const ConfirmationAsker& asker) {
    const std::uint64_t number = ++numbers;
    ConfirmationOutcome begun = begin(wish, asker, number);
    if (begun.status != 200)
        return begun;
    const auto start = std::chrono::steady_clock::now();
    const auto answer = ask(*begun.current->alarm());
    metrics.observeConfirmation(std::chrono::steady_clock::now() - start);
    settle(wish.id, number, answer.value_or(noConfirmations));
    if (!answer)
        return {503, {}, std::string(noConfirmations.text().view())};
    metrics.targets.countConfirmation(begun.current->target, answer->result());
    return {200, answer->result(), std::string(answer->text().view())};
}

/// With 200 the alarm that the logger is to be asked about.
ConfirmationOutcome ConfirmationService::begin(const ConfirmationWish& wish,
                                               const ConfirmationAsker& asker,
                                               std::uint64_t number) {
    if (wish.id.kind != EventKind::alarm)
        return {400, {}, "only alarms can be confirmed"};
    if (EventRecordPtr lost = book.findLastKnown(wish.id))
        return {409, {}, targetIsLost, std::move(lost)};
    const EventRecordPtr there = book.find(wish.id);
    if (!there)
        return {404, {}, "there is no such event"};
    if (!isSeen(*there, wish))
        return {409, {}, "the alarm was raised at another time", there};
    // Before anything is written or asked: what nobody watches would never be unanswered.
    const auto isUp = [this, id = wish.id, number] { expire(id, number); };
    if (!deadlines.add(Deadlines::Clock::now() + patienceOf(), isUp))
        return {503, {}, "too many confirmations are under way"};
    EventRecordPtr seen;
    const auto request = [&](const EventRecord& event) -> EventRecordPtr {
        if (!isSeen(event, wish) || event.lastKnownSince.isset())
            return nullptr;
        const auto record = std::make_shared<EventRecord>(event);
        seen = record;
        // What the logger has confirmed stays with whom it was confirmed for.
        if (event.unconfirmed)
            record->confirmation =
                std::make_shared<Confirmation>(Confirmation{.number = number,
                                                            .by = asker.by,
                                                            .at = ZrHmiSrv::Timestamp::now(),
                                                            .comment = asker.comment});
        return event.unconfirmed ? record : nullptr;
    };
    EventRecordPtr held = book.modify(wish.id, ChangeType::confirmation, request);
    if (seen)
        return {.current = std::move(seen)};
    if (!held)
        return {404, {}, "there is no such event"};
    return {409,
            {},
            held->lastKnownSince.isset() ? targetIsLost : "the alarm was raised at another time",
            std::move(held)};
}

void ConfirmationService::settle(EventId id, std::uint64_t number, const ResultPair& answer) {
    book.modify(id, ChangeType::confirmation, [&](const EventRecord& event) {
        return advanced(event, number, [&](Confirmation& confirmation) {
            confirmation.state =
                answer.succeeded() ? ConfirmationState::accepted : ConfirmationState::failed;
            confirmation.result = answer.result();
            confirmation.text = answer.text().view();
        });
    });
}

void ConfirmationService::expire(EventId id, std::uint64_t number) {
    book.modify(id, ChangeType::confirmation, [&](const EventRecord& event) {
        return advanced(event, number, [](Confirmation& confirmation) {
            confirmation.state = ConfirmationState::unanswered;
        });
    });
}

}  // namespace hmi
