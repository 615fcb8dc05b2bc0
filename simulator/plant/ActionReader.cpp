#include "simulator/plant/ActionReader.h"

#include <array>
#include <limits>

#include "simulator/plant/EventReader.h"

namespace ZrSimulator {

namespace {

using std::chrono::milliseconds;

constexpr std::int64_t maxCount = 1'000'000;
constexpr double maxSeconds = 1e6;
constexpr std::int64_t maxDelayMs = 3'600'000;

milliseconds readSeconds(const JsonField& field) {
    return milliseconds(static_cast<std::int64_t>(1000 * field.number(0, maxSeconds)));
}

std::string readAlarmName(const JsonField& field) {
    std::string name = field["alarm"].text();
    if (name.empty())
        field["alarm"].fail("an empty name");
    return name;
}

AffectedCalls readCall(const JsonField& field) {
    const std::string name = field.text();
    if (name == "*")
        return AffectedCalls().set().reset(static_cast<std::size_t>(Operation::Notification));
    const auto operation = parseOperation(name);
    if (!operation)
        field.fail("not an operation");
    return AffectedCalls().set(static_cast<std::size_t>(*operation));
}

/// One name or an array of them.
AffectedCalls readCalls(const JsonField& field) {
    const JsonField calls = field["call"];
    if (!calls.isArray())
        return readCall(calls);
    AffectedCalls all;
    calls.forEachElement([&](const JsonField& element) { all |= readCall(element); });
    return all;
}

Failure readFailureKind(const JsonField& field) {
    const std::string name = field.text();
    if (name == "answersNothing")
        return Failure::answersNothing;
    if (name == "exception")
        return Failure::exception;
    if (name == "foreignException")
        return Failure::foreignException;
    field.fail("not a kind of failure");
}

EventSeries readSeries(const JsonField& field, const EventCatalog& catalog, EventKind kind) {
    EventSeries series;
    series.content = readEvent(field, catalog, kind);
    if (const auto time = field.find("timeRaised"))
        series.timeRaised = readTime(*time);
    if (const auto count = field.find("count"))
        series.count = static_cast<std::uint32_t>(count->integer(1, maxCount));
    return series;
}

Action readRaise(const JsonField& field, const EventCatalog& catalog) {
    field.allowOnly({"do", "after", "alarm", "class", "event", "severity", "confirm", "source",
                     "arguments", "json", "timeRaised", "count"});
    RaiseAction action;
    action.alarm = readAlarmName(field);
    action.numbered = field.find("count").has_value();
    action.series = readSeries(field, catalog, EventKind::alarm);
    return action;
}

Action readClear(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "alarm", "timeCleared"});
    ClearAction action{readAlarmName(field), std::nullopt};
    if (const auto time = field.find("timeCleared"))
        action.timeCleared = readTime(*time);
    return action;
}

Action readConfirm(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "alarm"});
    return ConfirmAction{readAlarmName(field)};
}

Action readMessage(const JsonField& field, const EventCatalog& catalog) {
    field.allowOnly({"do", "after", "class", "event", "severity", "source", "arguments", "json",
                     "timeRaised", "count"});
    return MessageAction{readSeries(field, catalog, EventKind::message)};
}

Action readDatabaseChanged(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "reason"});
    return DatabaseChangedAction{static_cast<LONG>(field["reason"].integer(
        std::numeric_limits<LONG>::min(), std::numeric_limits<LONG>::max()))};
}

Action readRefuse(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "hresult", "seconds"});
    RefuseAction action{readFailure(field["hresult"]), std::nullopt};
    if (const auto seconds = field.find("seconds"))
        action.time = readSeconds(*seconds);
    return action;
}

/// A result or a kind of failure, and what happens meanwhile: one of them at least.
void readWhatFails(const JsonField& field, const EventCatalog& catalog, FailAction& action) {
    const auto kind = field.find("kind");
    const auto meanwhile = field.find("meanwhile");
    if (meanwhile)
        action.meanwhile =
            std::make_shared<const ActionList>(ActionList{readActions(*meanwhile, catalog)});
    if (kind) {
        action.failure = readFailureKind(*kind);
        if (field.find("hresult"))
            kind->fail("beside an hresult");
        if (action.failure != Failure::answersNothing &&
            action.calls.test(static_cast<std::size_t>(Operation::Notification)))
            kind->fail("a notification throws nothing");
    } else if (!meanwhile || field.find("hresult")) {
        action.failure = Failure::result;
        action.hresult = readFailure(field["hresult"]);
    }
}

Action readFail(const JsonField& field, const EventCatalog& catalog) {
    field.allowOnly({"do", "after", "call", "hresult", "kind", "meanwhile", "skip", "times"});
    constexpr auto max = std::numeric_limits<std::uint32_t>::max();
    const auto skip = field.find("skip");
    const auto times = field.find("times");
    FailAction action{readCalls(field), Failure::none, S_OK, nullptr, 0, 1};
    if (skip)
        action.skip = static_cast<std::uint32_t>(skip->integer(0, max));
    if (times)
        action.times = static_cast<std::uint32_t>(times->integer(1, max));
    readWhatFails(field, catalog, action);
    return action;
}

Action readDelay(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "call", "ms"});
    return DelayAction{readCalls(field), milliseconds(field["ms"].integer(0, maxDelayMs))};
}

Action readPause(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after", "call"});
    return PauseAction{readCalls(field)};
}

/// An action that says nothing but its name.
template <class Plain>
Action readPlain(const JsonField& field, const EventCatalog&) {
    field.allowOnly({"do", "after"});
    return Plain{};
}

struct Reader {
    std::string_view name;
    Action (*read)(const JsonField&, const EventCatalog&);
};

constexpr std::array readers{
    Reader{"raise", readRaise},
    Reader{"clear", readClear},
    Reader{"confirm", readConfirm},
    Reader{"message", readMessage},
    Reader{"databaseChanged", readDatabaseChanged},
    Reader{"clearLoggedEvents", readPlain<ClearLoggedEventsAction>},
    Reader{"drop", readPlain<DropAction>},
    Reader{"refuse", readRefuse},
    Reader{"accept", readPlain<AcceptAction>},
    Reader{"fail", readFail},
    Reader{"delay", readDelay},
    Reader{"pause", readPause},
    Reader{"resume", readPlain<ResumeAction>},
    Reader{"hold", readPlain<HoldAction>},
    Reader{"release", readPlain<ReleaseAction>},
};

Action readAnyAction(const JsonField& field, const EventCatalog& catalog) {
    const std::string name = field["do"].text();
    for (const auto& reader : readers) {
        if (reader.name == name)
            return reader.read(field, catalog);
    }
    field["do"].fail("not an action");
}

}  // namespace

Action readAction(const JsonField& field, const EventCatalog& catalog) {
    Action action = readAnyAction(field, catalog);
    if (const auto after = field.find("after"))
        after->fail("only for the steps of a timeline");
    return action;
}

TimelineStep readTimelineStep(const JsonField& field, const EventCatalog& catalog) {
    Action action = readAnyAction(field, catalog);
    const auto after = field.find("after");
    return {after ? readSeconds(*after) : milliseconds(0), std::move(action)};
}

std::vector<Action> readActions(const JsonField& field, const EventCatalog& catalog) {
    std::vector<Action> actions;
    if (!field.isArray()) {
        actions.push_back(readAction(field, catalog));
        return actions;
    }
    field.forEachElement(
        [&](const JsonField& element) { actions.push_back(readAction(element, catalog)); });
    return actions;
}

}  // namespace ZrSimulator
