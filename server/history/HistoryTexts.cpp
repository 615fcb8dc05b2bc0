#include "server/history/HistoryTexts.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "server/Log.h"
#include "server/json/Utf8.h"

namespace hmi {

namespace {

constexpr std::size_t maxWishes = 50'000;
constexpr std::size_t wishesAtOnce = 500;
constexpr int maxTries = 20;
constexpr std::chrono::seconds pauseInVain{3};

std::optional<std::string> textOf(const TextsPtr& texts) {
    if (!texts || texts->result != ZrHmiSrv::ErrorValue::success)
        return std::nullopt;
    return toValidUtf8(texts->text.view());
}

}  // namespace

HistoryTexts::HistoryTexts(Ask given, Deliver to)
    : ask(std::move(given)), deliver(std::move(to)), thread([this] { run(); }) {}

std::vector<std::optional<std::string>> HistoryTexts::known(
    std::span<const EventRecordPtr> events) const {
    std::vector<std::optional<std::string>> texts;
    for (const TextsPtr& each : ask(events, std::chrono::milliseconds(0)))
        texts.push_back(textOf(each));
    return texts;
}

void HistoryTexts::wish(std::vector<MissingText> rows) {
    Lock lock(mutex);
    for (MissingText& row : rows) {
        if (wishes.size() < maxWishes)
            wishes.push_back({std::move(row)});
        else
            ++missing;
    }
    changed.notify_all();
}

void HistoryTexts::run() {
    while (true) {
        std::vector<Wish> wanted = take();
        if (wanted.empty())
            return;
        try {
            if (!fetch(std::move(wanted)))
                sleep(pauseInVain);
        } catch (const std::exception& exception) {
            log(LogLevel::error, std::string("texts of the history: ") + exception.what());
        }
    }
}

/// Waits for some; none when it is to stop.
std::vector<HistoryTexts::Wish> HistoryTexts::take() {
    Lock lock(mutex);
    while (wishes.empty() && !stopping)
        changed.wait(lock);
    std::vector<Wish> taken;
    while (!stopping && !wishes.empty() && taken.size() < wishesAtOnce) {
        taken.push_back(std::move(wishes.front()));
        wishes.pop_front();
    }
    return taken;
}

bool HistoryTexts::fetch(std::vector<Wish> wanted) {
    std::vector<EventRecordPtr> events;
    for (const Wish& wish : wanted)
        events.push_back(wish.row.event);
    const std::vector<TextsPtr> texts = ask(events, std::chrono::seconds(2));
    bool any = false;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        Wish& wish = wanted[i];
        if (auto text = textOf(texts[i])) {
            any = true;
            deliver(wish.row.place, std::move(*text));
            continue;
        }
        Lock lock(mutex);
        if (++wish.tries < maxTries && wishes.size() < maxWishes)
            wishes.push_back(std::move(wish));
        else
            ++missing;
    }
    return any;
}

bool HistoryTexts::sleep(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    Lock lock(mutex);
    while (!stopping && changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    return !stopping;
}

void HistoryTexts::stop() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    if (thread.joinable())
        thread.join();
}

std::size_t HistoryTexts::pending() const {
    Lock lock(mutex);
    return wishes.size();
}

std::uint64_t HistoryTexts::missed() const {
    Lock lock(mutex);
    return missing;
}

}  // namespace hmi
