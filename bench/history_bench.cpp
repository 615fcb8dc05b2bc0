/// How fast the history is. `history_bench MODE FILE [NUMBER]`:
///   rate FILE [SECONDS]  20,000 changes a second for so long; tells what was lost
///   fill FILE [ROWS]     as many rows as fast as they are written
///   read FILE            times pages and searches of what `fill` wrote
///   live FILE [RATE]     2,000 changes a second until it is killed; tells on standard output which were told when.
///                        At the start it hands over the last ones, as an import does
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "server/events/Change.h"
#include "server/history/History.h"

using namespace hmi;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using ZrHmiSrv::Alarm;
using ZrHmiSrv::AlarmConfirmationState;
using ZrHmiSrv::Message;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;

namespace {

constexpr int targets = 200;
constexpr int kinds = 500;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

template <class Payload>
Payload payloadOf(int number, Timestamp raised) {
    Payload payload;
    payload.set_name("EVENT");
    payload.set_domain("bench");
    payload.set_severity(static_cast<Severity>(number % 5));
    payload.set_time_raised(raised);
    Value& parameters = payload.payload();
    parameters.insert("targetName", "Line " + std::to_string(number % targets));
    parameters.insert("eventClass", "{00000001-0000-0000-0000-00000000ABCD}");
    parameters.insert("eventId", number % kinds);
    parameters.insert("sourceName", "Main.Drive" + std::to_string(number % 37));
    parameters.insert("numArguments", 1);
    parameters.insert("number", number);
    return payload;
}

EventRecordPtr recordOf(const std::variant<Alarm, Message>& event, int number, bool ended = false) {
    return std::make_shared<const EventRecord>(EventContent{event, {}},
                                               static_cast<std::uint64_t>(number), ended);
}

/// The texts of a plant: some words are in every one, some in few.
std::vector<TextsPtr> textsOf(std::span<const EventRecordPtr> events) {
    std::vector<TextsPtr> texts;
    for (const EventRecordPtr& event : events) {
        const int number = static_cast<int>(*event->event().payload().lookup("number"));
        const auto each = std::make_shared<EventTexts>();
        each->text = Text("Drive " + std::to_string(number % kinds) + " reports temperature " +
                          std::to_string(number % 97) + " above its limit" +
                          (number % 100'000 == 0 ? " needle" : ""));
        texts.push_back(each);
    }
    return texts;
}

struct Subject {
    explicit Subject(const char* file, std::int64_t bytes = std::int64_t{1} << 40)
        : history(openHistory({.file = file, .days = 36'000, .bytes = bytes},
                              {[](std::span<const EventRecordPtr> events,
                                  std::chrono::milliseconds) { return textsOf(events); },
                               [] { return std::vector<EventRecordPtr>(); },
                               [](const HistoryStatus& status) {
                                   std::fprintf(stderr, "state %d %s\n",
                                                static_cast<int>(status.state),
                                                status.error.c_str());
                               }})) {
        history->start();
    }

    /// One change; of each alarm there are four, one after another.
    void change(int number, Timestamp now) {
        if (number % 4 == 0) {
            history->post({ChangeType::message, recordOf(payloadOf<Message>(number, now), number)});
            return;
        }
        // Raised, confirmed, and with its end cleared and removed.
        if (number % 4 == 1) {
            alarm = payloadOf<Alarm>(number, now);
            alarm.set_id(number);
            alarm.set_confirmation_state(AlarmConfirmationState::pending);
            history->post({ChangeType::raised, recordOf(alarm, number)});
        } else if (number % 4 == 2) {
            alarm.set_confirmation_state(AlarmConfirmationState::confirmed);
            alarm.set_time_confirmed(now);
            history->post({ChangeType::updated, recordOf(alarm, number)});
        } else {
            alarm.set_time_cleared(now);
            history->post({ChangeType::removed, recordOf(alarm, number, true)});
            history->post({ChangeType::forgotten, recordOf(alarm, number, true)});
        }
    }

    Alarm alarm;
    std::unique_ptr<IHistory> history;
};

int rate(const char* file, int seconds) {
    constexpr int perSecond = 20'000;
    Subject subject(file);
    std::size_t queued = 0;
    double slowest = 0;
    const auto start = Clock::now();
    for (int number = 0; number < seconds * perSecond; ++number) {
        const auto before = Clock::now();
        subject.change(number, Timestamp::now());
        slowest = std::max(slowest, millisecondsSince(before));
        if (number % 200 == 0) {
            queued = std::max(queued, subject.history->status().queued);
            std::this_thread::sleep_until(start + number * (1'000'000'000ns / perSecond));
        }
    }
    const double took = millisecondsSince(start);
    subject.history->stop();
    const HistoryStatus status = subject.history->status();
    std::printf("%d changes in %.1f s, %llu entries, %llu lost, at most %zu queued, slowest %.1f ms\n",
                seconds * perSecond, took / 1000, static_cast<unsigned long long>(status.written),
                static_cast<unsigned long long>(status.lost), queued, slowest);
    return status.lost == 0 ? 0 : 1;
}

int fill(const char* file, int rows) {
    Subject subject(file);
    const auto start = Clock::now();
    const std::int64_t begin = Timestamp::now().nanoseconds() - 80'000'000LL * rows / 100;
    for (int number = 0; subject.history->status().written < static_cast<std::uint64_t>(rows);
         ++number) {
        subject.change(number, Timestamp(begin + number * 1'000'000LL));
        while (number % 1000 == 0 && subject.history->status().queued > 50'000)
            std::this_thread::sleep_for(5ms);
    }
    subject.history->stop();
    const HistoryStatus status = subject.history->status();
    const double took = millisecondsSince(start) / 1000;
    std::printf("%lld entries, %.0f MiB, in %.0f s: %.0f a second\n",
                static_cast<long long>(status.sequence), static_cast<double>(status.bytes) / 1048576,
                took, static_cast<double>(status.written) / took);
    return 0;
}

/// Times a query, first and again, and the pages behind it.
void time(IHistory& history, const char* what, HistoryQuery query) {
    std::vector<double> times;
    std::size_t found = 0;
    for (int page = 0; page < 20; ++page) {
        const auto start = Clock::now();
        const HistoryPage read = history.read(query);
        times.push_back(millisecondsSince(start));
        found += read.entries.size();
        if (!read.next)
            break;
        query.after = *read.next;
    }
    const double first = times.front();
    std::sort(times.begin(), times.end());
    std::printf("%-44s first %7.1f ms, median %7.1f, worst %7.1f of %zu pages, %zu entries\n", what,
                first, times[times.size() / 2], times.back(), times.size(), found);
}

int read(const char* file) {
    Subject subject(file);
    IHistory& history = *subject.history;
    const HistoryPage newest = history.read({.limit = 1});
    HistoryQuery back{.occurrence = 1};
    const HistoryPage oldest = history.read(back);
    const std::int64_t first = oldest.entries.back().place;
    const std::int64_t last = newest.entries.front().place;
    const std::int64_t middle = first + (last - first) / 2;
    const Timestamp half((oldest.entries.back().at.nanoseconds() / 2) +
                         newest.entries.front().at.nanoseconds() / 2);
    time(history, "all", {});
    time(history, "all, from the middle", {.after = middle});
    time(history, "all until a time", {.to = half});
    time(history, "a target", {.target = "Line 5"});
    time(history, "a target, from the middle", {.target = "Line 5", .after = middle});
    time(history, "a target that is none", {.target = "None"});
    time(history, "kind message", {.kind = HistoryKind::message});
    time(history, "kind audit: none", {.kind = HistoryKind::audit});
    time(history, "severity", {.severity = 3, .after = middle});
    time(history, "target, change and severity",
         {.target = "Line 9", .change = HistoryChange::cleared, .severity = 4});
    time(history, "station that is none", {.station = "North"});
    time(history, "an occurrence", {.occurrence = newest.entries.front().occurrence});
    time(history, "text in all", {.text = "temperature"});
    time(history, "text in all, from the middle", {.text = "temperature", .after = middle});
    time(history, "two words", {.text = "temperature 42"});
    time(history, "a rare word", {.text = "needle"});
    time(history, "no such word", {.text = "haystack"});
    time(history, "common words that never meet", {.text = "96 499", .after = middle});
    time(history, "a word and a target", {.target = "Line 5", .text = "temperature"});
    time(history, "a word, a change and a severity",
         {.change = HistoryChange::cleared, .severity = 4, .text = "drive"});
    time(history, "the beginning of a word", {.text = "temp*"});
    time(history, "the beginning of some words", {.text = "4*"});
    time(history, "the beginning of a word and all but audit", {.text = "temp*", .withAudit = false});
    time(history, "all but audit", {.withAudit = false});
    time(history, "one letter, of names too", {.text = "t*"});
    time(history, "one letter, of marks too", {.text = "v*"});
    time(history, "the beginning of a word, from the middle", {.text = "need*", .after = middle});
    return 0;
}

int live(const char* file, int perSecond) {
    Subject subject(file);
    int number = 0;
    const HistoryPage newest = subject.history->read({.limit = 1});
    if (!newest.entries.empty()) {
        const std::string& event = newest.entries.front().event;
        number = std::atoi(event.c_str() + event.find("\"number\":") + 9) + 1;
    }
    // The logger's own times, so that its log can be made again.
    const auto timeOf = [](int of) { return Timestamp(1'750'000'000'000'000'000 + of * 50'000LL); };
    const int told = number + 2 * perSecond;
    auto log = std::make_shared<Replacement>(Replacement{"Line", {}});
    for (int logged = std::max(0, number - 1000); logged < told; ++logged)
        log->events.push_back(recordOf(payloadOf<Message>(logged, timeOf(logged)), logged));
    subject.history->post({.type = ChangeType::reset, .replacement = log});
    const auto start = Clock::now();
    for (number = told;; ++number) {
        subject.history->post(
            {ChangeType::message, recordOf(payloadOf<Message>(number, timeOf(number)), number)});
        if (number % (perSecond / 100) != 0)
            continue;
        std::printf("%d\n", number);
        std::fflush(stdout);
        std::this_thread::sleep_until(start + (number - told) * (1'000'000'000ns / perSecond));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const char* const file = argc > 2 ? argv[2] : nullptr;
    const int number = argc > 3 ? std::atoi(argv[3]) : 0;
    if (mode == "rate" && file)
        return rate(file, number > 0 ? number : 60);
    if (mode == "fill" && file)
        return fill(file, number > 0 ? number : 10'000'000);
    if (mode == "read" && file)
        return read(file);
    if (mode == "live" && file)
        return live(file, number > 0 ? number : 2000);
    std::fprintf(stderr, "usage: history_bench rate|fill|read|live FILE [NUMBER]\n");
    return 2;
}
