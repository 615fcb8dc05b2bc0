#include "server/history/EventLives.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::AlarmState;
using ZrHmiSrv::Timestamp;

namespace {

/// The time of something that happens now: the logger's, unless its clock is plainly wrong.
Timestamp believed(Timestamp time) {
    constexpr std::int64_t doubt = 86'400'000'000'000;  // a day
    const std::int64_t now = Timestamp::now().nanoseconds();
    const bool isNear = time.nanoseconds() > now - doubt && time.nanoseconds() < now + doubt;
    return isNear ? time : Timestamp(now);
}

/// Cleared and not waiting for anybody, or known to the log only.
bool isOver(const EventRecord& alarm) {
    return alarm.ended || alarm.alarm()->alarm_state() == AlarmState::invalid ||
           (alarm.alarm()->time_cleared().isset() && !alarm.unconfirmed);
}

/// The alarm of this JSON as one whose end nobody has seen.
std::string withoutEnd(const std::string& text) {
    json::parse_options options;
    options.max_depth = 1000;  // as deep as an event's parameters may be
    json::object alarm = json::parse(text, {}, options).as_object();
    alarm["active"] = false;
    if (alarm["timeCleared"].is_null())
        alarm["alarmState"] = static_cast<std::uint32_t>(AlarmState::invalid);
    return json::serialize(alarm);
}

bool isAnother(const EventRecord& a, const EventRecord& b) {
    return a.severity != b.severity || !(a.event().payload() == b.event().payload()) ||
           a.alarm()->confirmation_state() != b.alarm()->confirmation_state();
}

}  // namespace

void EventLives::onAlarm(const EventRecordPtr& alarm) {
    Life& life = lifeOf(alarm);
    if (life.raised < alarm->alarm()->time_raised())
        life = begin(alarm, HistoryChange::raisedAgain, Source::live, life.occurrence);
    follow(alarm, life, Source::live);
}

/// Of an alarm that is not known in this run: the history's, when that has one that nobody else is.
EventLives::Life& EventLives::lifeOf(const EventRecordPtr& alarm) {
    Lives& ofTarget = lives[alarm->target];
    const auto known = ofTarget.find(alarm->id.number);
    if (known != ofTarget.end())
        return known->second;
    const EventIdentity identity = EventIdentity::of(*alarm);
    const auto twins = table.births(identity.raised, identity.digest, identity.digest);
    const auto taken = twins.empty() ? Occurrences() : occurrencesOf(ofTarget);
    for (const auto& birth : twins) {
        if (taken.contains(birth.occurrence))
            continue;
        Life life = resume(alarm, birth.occurrence);
        if (!life.isOver)
            return ofTarget.emplace(alarm->id.number, std::move(life)).first->second;
    }
    Life life = begin(alarm, HistoryChange::raised, Source::live);
    return ofTarget.emplace(alarm->id.number, std::move(life)).first->second;
}

EventLives::Occurrences EventLives::occurrencesOf(const Lives& of) {
    Occurrences occurrences;
    for (const auto& [id, life] : of)
        occurrences.insert(life.occurrence);
    return occurrences;
}

EventLives::Life EventLives::begin(const EventRecordPtr& alarm, HistoryChange change,
                                   Source source, std::int64_t former) {
    const Timestamp raised = alarm->alarm()->time_raised();
    const bool isHandedOver = source == Source::handedOver;
    Life life{.raised = raised};
    if (isHandedOver && table.isRemoved(raised)) {
        // Too old to be kept: nothing is told of it but what comes yet.
        life.cleared = alarm->alarm()->time_cleared();
        life.confirmed = alarm->alarm()->time_confirmed();
        life.isOver = isOver(*alarm);
    } else {
        life.occurrence = table.append({.change = change,
                                        .at = isHandedOver ? raised : believed(raised),
                                        .record = alarm,
                                        .birth = EventIdentity::of(*alarm),
                                        .former = former});
    }
    life.last = alarm;
    return life;
}

EventLives::Life EventLives::resume(const EventRecordPtr& alarm, std::int64_t occurrence) {
    Life life{.occurrence = occurrence, .raised = alarm->alarm()->time_raised()};
    for (const auto& step : table.lifeOf(occurrence)) {
        if (step.change == HistoryChange::cleared)
            life.cleared = step.at;
        else if (step.change == HistoryChange::confirmed)
            life.confirmed = step.at;
        life.isOver = life.isOver || step.change == HistoryChange::removed;
    }
    table.wishText(occurrence, alarm);
    life.last = alarm;
    return life;
}

void EventLives::follow(const EventRecordPtr& record, Life& life, Source source) {
    const Alarm& alarm = *record->alarm();
    if (alarm.time_raised() != life.raised)
        return;  // what is known already is newer
    const auto at = [source](Timestamp time) {
        return source == Source::live ? believed(time) : time;
    };
    bool isTold = life.last == record;
    const auto tell = [&](HistoryChange change, Timestamp time) {
        add(record, life, change, at(time));
        isTold = true;
    };
    if (alarm.time_cleared().isset() && !life.cleared.isset())
        tell(HistoryChange::cleared, life.cleared = alarm.time_cleared());
    if (alarm.confirmation_state() == AlarmConfirmationState::confirmed &&
        !life.confirmed.isset()) {
        life.confirmed =
            alarm.time_confirmed().isset() ? alarm.time_confirmed() : Timestamp::now();
        tell(HistoryChange::confirmed, life.confirmed);
    }
    if (isOver(*record) && !life.isOver) {
        life.isOver = true;
        tell(HistoryChange::removed,
             std::max({alarm.time_raised(), alarm.time_cleared(), life.confirmed}));
    }
    // The log shows an alarm a little differently than it is shown while it lives.
    if (!isTold && source == Source::live && !life.isOver && isAnother(*record, *life.last))
        add(record, life, HistoryChange::updated, Timestamp::now());
    life.last = record;
}

void EventLives::add(const EventRecordPtr& alarm, const Life& life, HistoryChange change, Time at) {
    HistoryRow row{
        .change = change, .at = at, .record = alarm, .occurrence = life.occurrence};
    const ConfirmationPtr& asked = alarm->confirmation;
    const bool isAnswer =
        change == HistoryChange::confirmed && asked && asked->state == ConfirmationState::confirmed;
    if (isAnswer || change == HistoryChange::confirmation) {
        row.by = asked->by;
        row.comment = asked->comment;
    }
    table.append(std::move(row));
}

void EventLives::onMessage(const EventRecordPtr& message) {
    if (broughtBack.contains(message->id.number))
        return;
    const EventIdentity identity = EventIdentity::of(*message);
    table.append({.change = HistoryChange::message,
                  .at = believed(identity.raised),
                  .record = message,
                  .birth = identity});
}

void EventLives::onConfirmation(const EventRecordPtr& alarm) {
    onAlarm(alarm);
    const bool isNew = alarm->confirmation->state == ConfirmationState::requested;
    add(alarm, lives[alarm->target][alarm->id.number], HistoryChange::confirmation,
        isNew ? alarm->confirmation->at : Timestamp::now());
}

void EventLives::onHandedOver(const Replacement& all) {
    replace(all);
    if (all.isComplete && imported.erase(all.target) > 0)
        endUnseen(all.target);
}

/// What the logger does not know any more has ended while nobody looked: its last row says so, where
/// the one before stands.
void EventLives::endUnseen(const std::string& target) {
    const Occurrences here = occurrencesOf(lives[target]);
    for (const std::int64_t occurrence : table.unended(target)) {
        if (here.contains(occurrence))
            continue;
        table.giveUp(occurrence);
        auto row = table.lastOf(occurrence);
        if (!row || table.isRemoved(row->at))
            continue;
        row->change = HistoryChange::removed;
        row->event = withoutEnd(row->event);
        table.append(std::move(*row));
    }
}

void EventLives::replace(const Replacement& all) {
    Lives known = std::exchange(lives[all.target], {});
    std::vector<EventRecordPtr> strangers = takeOver(all, known);
    recognise(strangers, true);
    recognise(strangers, false);
    Lives& ofTarget = lives[all.target];
    for (const EventRecordPtr& alarm : strangers)
        ofTarget.emplace(alarm->id.number,
                         begin(alarm, HistoryChange::raised, Source::handedOver));
    for (const EventRecordPtr& event : all.events) {
        if (event->alarm())
            follow(event, ofTarget.at(event->id.number), Source::handedOver);
    }
}

/// The messages are done with, and the alarms that are known in this run. Answers the others.
std::vector<EventRecordPtr> EventLives::takeOver(const Replacement& all, Lives& known) {
    std::vector<EventRecordPtr> strangers;
    std::map<EventIdentity, Twins> copies;  // of equal messages each is one
    Lives& ofTarget = lives[all.target];
    for (const EventRecordPtr& event : all.events) {
        if (!event->alarm()) {
            const EventIdentity identity = EventIdentity::of(*event);
            const auto [copy, isFirst] = copies.try_emplace(identity);
            Twins& twins = copy->second;
            if (isFirst)
                twins.births = table.births(identity.raised, identity.digest, identity.digest);
            if (twins.next < twins.births.size())
                table.wishText(twins.births[twins.next++].occurrence, event);
            else if (!table.isRemoved(identity.raised))
                table.append({.change = HistoryChange::message,
                              .at = identity.raised,
                              .record = event,
                              .birth = identity});
            continue;
        }
        auto node = known.extract(event->id.number);
        if (!node) {
            strangers.push_back(event);
            continue;
        }
        const auto taken = ofTarget.insert(std::move(node)).position;
        if (taken->second.raised < event->alarm()->time_raised())
            taken->second = begin(event, HistoryChange::raisedAgain, Source::handedOver,
                                  taken->second.occurrence);
    }
    return strangers;
}

/// Takes out those that the history holds as nobody else's.
void EventLives::recognise(std::vector<EventRecordPtr>& strangers, bool byArguments) {
    if (strangers.empty())
        return;
    Lives& ofTarget = lives[strangers.front()->target];
    Occurrences taken = occurrencesOf(ofTarget);
    std::map<EventIdentity, Twins> alike;
    std::erase_if(strangers, [&](const EventRecordPtr& alarm) {
        const EventIdentity identity = EventIdentity::of(*alarm);
        const std::int64_t first = byArguments ? identity.digest : identity.first();
        const std::int64_t last = byArguments ? identity.digest : identity.last();
        const auto [found, isFirst] = alike.try_emplace({identity.raised, first});
        Twins& twins = found->second;
        if (isFirst)
            twins.births = table.births(identity.raised, first, last);
        while (twins.next < twins.births.size()) {
            const std::int64_t occurrence = twins.births[twins.next++].occurrence;
            if (!taken.insert(occurrence).second)
                continue;
            Life& life =
                ofTarget.emplace(alarm->id.number, resume(alarm, occurrence)).first->second;
            life.isOver = life.isOver && isOver(*alarm);  // it was taken for ended
            return true;
        }
        return false;
    });
}

void EventLives::bringBack(const Replacement& all) {
    replace(all);
    imported.clear();  // what was handed over since may be what was lost
    for (const EventRecordPtr& event : all.events) {
        if (!event->alarm())
            broughtBack.insert(event->id.number);
    }
}

void EventLives::onForgotten(const EventRecord& event) {
    const auto ofTarget = lives.find(event.target);
    if (ofTarget != lives.end() && event.alarm())
        ofTarget->second.erase(event.id.number);
}

}  // namespace hmi
