#include "server/history/HistoryWriter.h"

#include <map>
#include <utility>

#include <boost/json/serialize.hpp>

#include "server/Log.h"
#include "server/StartError.h"
#include "server/events/LogBook.h"
#include "server/history/HistoryFile.h"
#include "server/json/TargetJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::Timestamp;

struct HistoryWriter::Open {
    Open(std::unique_ptr<Database> opened, const Settings& settings, const HistoryTexts& texts)
        : database(std::move(opened)),
          table(*database, settings.station,
                [&texts](std::span<const EventRecordPtr> events) { return texts.known(events); }),
          retention(*database, table, settings.limits) {}

    std::unique_ptr<Database> database;
    HistoryTable table;
    EventLives lives{table};
    Retention retention;
};

HistoryWriter::HistoryWriter(Settings given, HistoryQueue& queue, HistoryTexts& texts,
                             Snapshot snapshot, Tell tell)
    : settings(std::move(given)),
      queue(queue),
      texts(texts),
      snapshot(std::move(snapshot)),
      tell(std::move(tell)) {}

void HistoryWriter::start() {
    enter(HistoryStatus::State::good);
    try {
        open();
    } catch (const DatabaseError& error) {
        if (error.isMisplaced() || (!error.mayPass() && !error.isBroken()))
            throw StartError("--history: " + settings.file.string() + ": " + error.what());
        onFailure(error);
    }
    thread = std::thread([this] { run(); });
}

HistoryWriter::~HistoryWriter() {
    stop();
}

void HistoryWriter::open() {
    file = std::make_unique<Open>(openHistoryFile(settings.file), settings, texts);
    const std::int64_t bytes = file->retention.used();
    ++files;
    Lock lock(mutex);
    current.bytes = bytes;
}

void HistoryWriter::run() {
    for (bool isLast = false; !isLast;) {
        HistoryQueue::Batch batch = queue.take();
        if (file && suspected == files)
            onFailure(DatabaseError::broken("a reader says so"));
        isLast = batch.isLast;
        write(batch);
        if (batch.isAll && file)
            file->lives.endBringingBack();
        maintain();
    }
    try {
        if (file)
            file->database->execute("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const DatabaseError&) {  // the next start does it
    }
    file.reset();
}

void HistoryWriter::write(HistoryQueue::Batch& batch) {
    hasLost = hasLost || batch.loss;
    if (batch.items.empty() && !hasLost && file)
        return;
    while (!tryToWrite(batch)) {
        if (queue.sleep(std::chrono::seconds(1)))
            continue;
        queue.lose(batch.items.size());
        return;
    }
}

bool HistoryWriter::tryToWrite(const HistoryQueue::Batch& batch) try {
    if (!file)
        open();
    rejected = 0;
    HistoryTable& table = file->table;
    Transaction transaction(*file->database);
    table.begin();
    const std::int64_t before = table.lastSequence();
    for (const HistoryItem& item : batch.items)
        writeItem(item);
    if (batch.loss)
        writeGap(*batch.loss);
    if (hasLost)
        bringBack();
    table.end();
    transaction.commit();
    hasLost = false;
    texts.wish(table.takeWishes());
    if (rejected > 0)
        queue.lose(rejected);
    const bool isBehind = queue.size() > 2 * HistoryQueue::largestBatch;
    enter(isBehind ? HistoryStatus::State::behind : HistoryStatus::State::good);
    Lock lock(mutex);
    current.written += static_cast<std::uint64_t>(table.lastSequence() - before);
    current.sequence = table.lastSequence();
    return true;
} catch (const DatabaseError& error) {
    onFailure(error);
    if (error.isBroken() || error.mayPass())
        return false;
    queue.lose(batch.items.size());
    return true;
} catch (const StartError& error) {
    enter(HistoryStatus::State::failing, error.what());
    return false;
}

void HistoryWriter::onFailure(const DatabaseError& error) {
    enter(HistoryStatus::State::failing, error.what());
    // What was prepared and remembered within the transaction is void.
    hasLost = hasLost || (file && file->lives.isBringingBack());
    file.reset();
    if (!error.isBroken())
        return;
    hasLost = true;
    try {
        setAside(settings.file, error.what());
    } catch (const DatabaseError& kept) {
        enter(HistoryStatus::State::failing, kept.what());
    }
}

void HistoryWriter::writeItem(const HistoryItem& item) try {
    std::visit([this](const auto& each) { writeItem(each); }, item);
} catch (const DatabaseError&) {
    throw;
} catch (const std::exception& exception) {
    log(LogLevel::error, std::string("history: a change cannot be kept: ") + exception.what());
    ++rejected;
}

void HistoryWriter::writeItem(const Change& change) {
    switch (change.type) {
        case ChangeType::raised:
        case ChangeType::updated:
        case ChangeType::removed:
            return file->lives.onAlarm(change.event);
        case ChangeType::message:
            return file->lives.onMessage(change.event);
        case ChangeType::confirmation:
            return file->lives.onConfirmation(change.event);
        case ChangeType::forgotten:
            return file->lives.onForgotten(*change.event);
        case ChangeType::reset:
            return change.replacement ? file->lives.onHandedOver(*change.replacement) : void();
        case ChangeType::log:
            return file->lives.onImported(importedTarget(change.entry->message).value());
        case ChangeType::gap:
            file->table.append({.change = HistoryChange::gap,
                                .at = change.gap->to.isset() ? change.gap->to : change.gap->from,
                                .target = change.gap->target,
                                .event = json::serialize(toJson(*change.gap))});
            return;
        default:
            return;
    }
}

void HistoryWriter::writeItem(const AuditLine& line) {
    const AuditEntry& entry = line.entry;
    const auto text = [](const std::string& from) { return toJson(std::string_view(from)); };
    const json::object event{{"kind", "audit"},
                             {"peer", text(entry.peer)},
                             {"what", text(entry.what)},
                             {"status", entry.status},
                             {"answer", text(entry.answer)}};
    file->table.append({.change = HistoryChange::audit,
                        .at = line.at,
                        .event = json::serialize(event),
                        .text = entry.what + " -> " + std::to_string(entry.status),
                        .by = entry.user});
}

void HistoryWriter::writeItem(const PlacedText& text) {
    file->table.setText(text.place, text.text);
}

void HistoryWriter::writeGap(const HistoryLoss& loss) {
    const json::object event{{"kind", "gap"},        {"target", nullptr},
                             {"from", toJson(loss.from)}, {"to", toJson(loss.to)},
                             {"reason", "history"},  {"lost", loss.count}};
    file->table.append(
        {.change = HistoryChange::gap, .at = loss.to, .event = json::serialize(event)});
    log(LogLevel::warning,
        "history: " + std::to_string(loss.count) + " changes are missing from it");
}

/// Of what there still is nothing is missing then.
void HistoryWriter::bringBack() {
    std::map<std::string, Replacement> targets;
    for (EventRecordPtr& event : snapshot()) {
        Replacement& all = targets[event->target];
        all.target = event->target;
        all.events.push_back(std::move(event));
    }
    for (const auto& [name, all] : targets)
        file->lives.bringBack(all);
}

void HistoryWriter::maintain() try {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds share{50};
    if (!file)
        return;
    std::size_t removed = 0;
    for (const auto end = Clock::now() + share; Clock::now() < end;) {
        const std::size_t count = file->retention.step();
        removed += count;
        if (count == 0)
            break;
    }
    const std::int64_t bytes = file->retention.used();
    Lock lock(mutex);
    current.removed += removed;
    current.bytes = bytes;
} catch (const DatabaseError& error) {
    onFailure(error);
}

void HistoryWriter::enter(HistoryStatus::State state, const std::string& error) {
    {
        Lock lock(mutex);
        if (current.since.isset() && current.state == state && current.error == error)
            return;
        current.since = Timestamp::now();
        current.state = state;
        current.error = error;
    }
    if (state == HistoryStatus::State::failing)
        log(LogLevel::error, "history: nothing can be written: " + error);
    else if (state == HistoryStatus::State::behind)
        log(LogLevel::warning, "history: more comes than is written");
    tell();
}

void HistoryWriter::stop() {
    queue.stop();
    if (thread.joinable())
        thread.join();
}

HistoryStatus HistoryWriter::status() const {
    Lock lock(mutex);
    return current;
}

}  // namespace hmi
