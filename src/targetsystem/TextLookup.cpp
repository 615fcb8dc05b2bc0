#include "targetsystem/TextLookup.h"

#include "events/Abandoned.h"
#include "targetsystem/LoggerTexts.h"

using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace ZrHmiEventLogger {

namespace {

/// Texts of events with more bytes of arguments than this are not kept, so that the limit in
/// texts is one in memory too.
constexpr std::size_t maxKeptArguments = 4096;

constexpr std::chrono::seconds newsPeriod{10};

ResultPair notConnected() {
    return {ErrorValue::not_connected, "Not connected."};
}

bool isKeepable(const EventReference& event) {
    return event.types.size() + event.data.size() <= maxKeptArguments;
}

}  // namespace

ResultPair TextLookup::requireConnection() {
    try {
        if (disabled)
            return {ErrorValue::not_connected, "Connection disabled."};
        if (context.isOver() || !connection.isConnectedNow() || context.isOver())
            return notConnected();
        return {};
    } catch (...) {
        return reportException();
    }
}

ResultPair TextLookup::reportException() {
    context.logging.reportCommunicationError(context.targetName);
    return {ErrorValue::request_failed, "An exception was raised."};
}

Translation TextLookup::eventText(const EventReference& event, LCID language) {
    const EventReference part{event.eventClass, event.eventId, {}, event.types, event.data};
    return lookUp({TranslationKind::eventText, part, language}, readEventText);
}

Translation TextLookup::eventClassName(const EventReference& event, LCID language) {
    const EventReference part{event.eventClass};
    return lookUp({TranslationKind::eventClassName, part, language}, readEventClassName);
}

Translation TextLookup::sourceName(const EventReference& event, LCID language) {
    if (event.sourceName.empty())
        return {};
    const EventReference part{{}, 0, event.sourceName};
    return lookUp({TranslationKind::sourceName, part, language}, readSourceName);
}

Translation TextLookup::guidance(const EventReference& event, LCID language) {
    const EventReference part{event.eventClass, event.eventId};
    return lookUp({TranslationKind::guidance, part, language}, readGuidance);
}

Translation TextLookup::lookUp(const TranslationKey& key, Read read) {
    return cache.get(key, [&] { return ask(key, read); });
}

std::optional<CacheStatistics> TextLookup::takeNews() {
    const auto now = std::chrono::steady_clock::now();
    const CacheStatistics current = cache.statistics();
    Lock lock(newsMutex);
    if (current == taken || now - takenAt < newsPeriod)
        return std::nullopt;
    taken = current;
    takenAt = now;
    return current;
}

TranslationCache::Answer TextLookup::ask(const TranslationKey& key, Read read) {
    if (ResultPair ready = requireConnection(); !ready.succeeded())
        return {{std::move(ready), Value()}, false};
    try {
        Value value = read(context, *connection.get(), key.event(), key.language());
        // What the logger loads ahead it answers by itself; an option that was switched on since
        // it connected has loaded nothing yet.
        const bool preloaded =
            connection.preloadsTranslations() && context.logging.preloadTranslations();
        const bool keep = !preloaded && isKeepable(key.event());
        return {{ResultPair(), std::move(value)}, keep};
    } catch (const Abandoned&) {
        return {{notConnected(), Value()}, false};
    } catch (...) {
        return {{reportException(), Value()}, false};
    }
}

}  // namespace ZrHmiEventLogger
