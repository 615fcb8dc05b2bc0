#include "server/texts/EventTextService.h"

#include <algorithm>
#include <utility>

#include "server/events/LogBook.h"

namespace hmi {

using ZrHmiSrv::ErrorValue;

namespace {

/// What has failed, or was postponed, is not asked for again before that.
constexpr std::chrono::seconds retryTime{5};
/// A target system whose failure takes longer hangs, and is not asked for anything else meanwhile.
constexpr std::chrono::milliseconds patience{500};
/// How long the readers are kept from asking again, so that they find several new texts.
constexpr std::chrono::milliseconds gatherTime{250};

const EventTexts failure{ErrorValue::request_failed, {}, {}};

}  // namespace

EventTextService::EventTextService(Localize given, WorkerLanes& lanes, IChangeSink& sink)
    : localize(std::move(given)), lanes(lanes), news(sink) {}

std::vector<TextsPtr> EventTextService::get(std::span<const EventRecordPtr> events,
                                            const std::string& locale,
                                            std::chrono::milliseconds wait) {
    const auto now = Clock::now();
    const auto end = now + wait;
    std::vector<TextsPtr> texts(events.size());
    std::vector<std::size_t> places;
    std::vector<TextKey> missing;
    for (std::size_t i = 0; i < events.size(); ++i) {
        TextKey key{events[i], locale};
        texts[i] = known.find(key, now);
        if (texts[i] || missing.size() == maxAsked)
            continue;
        places.push_back(i);
        missing.push_back(std::move(key));
    }
    const auto unknown =
        static_cast<std::uint64_t>(std::count(texts.begin(), texts.end(), nullptr));
    misses += unknown;
    hits += texts.size() - unknown;
    if (missing.empty())
        return texts;
    const auto batch = std::make_shared<Batch>();
    for (const TextKey& key : join(missing, batch))
        start(key);
    await(*batch, end);
    for (std::size_t i = 0; i < missing.size(); ++i)
        texts[places[i]] = known.find(missing[i], Clock::now());
    return texts;
}

/// Answers those that nobody fetches yet.
std::vector<TextKey> EventTextService::join(std::span<const TextKey> missing,
                                            const BatchPtr& batch) {
    std::vector<TextKey> unasked;
    Lock lock(mutex);
    for (const TextKey& key : missing) {
        const auto [fetch, isNew] =
            fetches.try_emplace(key, Fetch{known.generationOf(key), {}});
        fetch->second.readers.push_back(batch);
        ++batch->outstanding;
        if (isNew)
            unasked.push_back(key);
    }
    return unasked;
}

void EventTextService::await(Batch& batch, Clock::time_point end) {
    Lock lock(mutex);
    while (batch.outstanding > 0 && !stopping &&
           changed.wait_until(lock, end) != std::cv_status::timeout) {
    }
    batch.givenUp = batch.outstanding > 0;
}

void EventTextService::start(const TextKey& key) {
    lanes.run({Lane::texts, key.event->target},
              {[this, key] { fetch(key); }, [this, key](const std::string&) { postpone(key); }});
}

void EventTextService::fetch(const TextKey& key) {
    if (isHushed(key.event->target))
        return postpone(key);
    const auto start = Clock::now();
    auto texts = localize(*key.event, key.locale).value_or(failure);
    if (texts.result == ErrorValue::success || Clock::now() - start < patience)
        return finish(key, std::make_shared<const EventTexts>(std::move(texts)));
    hush(key.event->target);
    postpone(key);
}

bool EventTextService::isHushed(const std::string& target) {
    Lock lock(mutex);
    const auto found = hushed.find(target);
    if (found == hushed.end())
        return false;
    if (Clock::now() < found->second)
        return true;
    hushed.erase(found);
    return false;
}

void EventTextService::hush(const std::string& target) {
    Lock lock(mutex);
    hushed[target] = Clock::now() + retryTime;
}

void EventTextService::finish(const TextKey& key, TextsPtr texts) {
    const bool isGood = texts->result == ErrorValue::success;
    const auto until = isGood ? Clock::time_point::max() : Clock::now() + retryTime;
    Lock lock(mutex);
    ++(isGood ? succeeded : failed);
    const bool isValid = known.put(key, std::move(texts), until, fetches.at(key).generation);
    const bool isAwaited = release(key);
    lock.unlock();
    if (isAwaited && (isGood || !isValid))
        news.tellWithin(gatherTime);
}

void EventTextService::postpone(const TextKey& key) {
    {
        Lock lock(mutex);
        ++postponed;
        release(key);
    }
    news.tellWithin(retryTime);
}

/// True when a reader has gone without them.
bool EventTextService::release(const TextKey& key) {
    const auto ended = fetches.extract(key);
    bool isAwaited = false;
    for (const BatchPtr& batch : ended.mapped().readers) {
        --batch->outstanding;
        isAwaited = isAwaited || batch->givenUp;
    }
    changed.notify_all();
    return isAwaited;
}

bool EventTextService::post(const Change& change) noexcept {
    if (change.replacement)
        forget(change.replacement->target);
    if (!change.entry)
        return true;
    if (const auto target = importedTarget(change.entry->message))
        forget(*target);
    return true;
}

void EventTextService::forget(const std::string& target) {
    known.forget(target);
    Lock lock(mutex);
    hushed.erase(target);
}

void EventTextService::stop() {
    {
        Lock lock(mutex);
        stopping = true;
        changed.notify_all();
    }
    news.stop();
}

void EventTextService::write(PrometheusText& text) const {
    Lock lock(mutex);
    text.family("hmi_texts_known", "gauge", "Localized texts that are held.");
    text.sample({}, static_cast<double>(known.size()));
    text.family("hmi_texts_read_total", "counter", "Texts that lists wanted, by where they were.");
    text.sample({{"cache", "hit"}}, static_cast<double>(hits));
    text.sample({{"cache", "miss"}}, static_cast<double>(misses));
    text.family("hmi_texts_pending", "gauge", "Localized texts that are being fetched.");
    text.sample({}, static_cast<double>(fetches.size()));
    text.family("hmi_texts_fetched_total", "counter", "Look-ups of localized texts, by outcome.");
    text.sample({{"outcome", "known"}}, static_cast<double>(succeeded));
    text.sample({{"outcome", "failed"}}, static_cast<double>(failed));
    text.sample({{"outcome", "postponed"}}, static_cast<double>(postponed));
}

}  // namespace hmi
