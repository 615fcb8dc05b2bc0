#pragma once

#include <atomic>
#include <chrono>
#include <optional>

#include "events/EventContext.h"
#include "host/Result.h"
#include "platform/Mutex.h"
#include "targetsystem/EventReference.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/TranslationCache.h"

namespace ZrHmiEventLogger {

/// The texts of one target's events in the languages of the clients: from the cache, or else from
/// the logger, which is asked with no lock held. A failure is answered as what to tell the client;
/// one of a call is reported as well. Any thread.
class TextLookup {
public:
    TextLookup(const EventContext& context, LoggerConnection& connection,
               const std::atomic<bool>& disabled)
        : context(context), connection(connection), disabled(disabled) {}

    /// Success when the logger can be asked, otherwise what to tell the client. Waits for no
    /// connect.
    ZrHmiSrv::ResultPair requireConnection();

    /// The event's text, formatted with its arguments.
    Translation eventText(const EventReference& event, LCID language);
    Translation eventClassName(const EventReference& event, LCID language);
    /// Without a value when the source has no name or its name no translation.
    Translation sourceName(const EventReference& event, LCID language);
    /// Causes, remedies and details as `readGuidance` gives them.
    Translation guidance(const EventReference& event, LCID language);

    /// What was looked up so far may be stale.
    void clearCache() { cache.clear(); }
    CacheStatistics cacheStatistics() const { return cache.statistics(); }
    /// The same, when they have changed since they were taken last and that was ten seconds ago.
    std::optional<CacheStatistics> takeNews() EXCLUDES(newsMutex);

private:
    using Read = ZrHmiSrv::Value (*)(const EventContext& context, LoggerConnection::Logger& logger,
                                     const EventReference& event, LCID language);

    Translation lookUp(const TranslationKey& key, Read read);
    TranslationCache::Answer ask(const TranslationKey& key, Read read);
    ZrHmiSrv::ResultPair reportException();

    const EventContext& context;
    LoggerConnection& connection;
    const std::atomic<bool>& disabled;
    TranslationCache cache;
    Mutex newsMutex;  ///< guards what was taken last
    CacheStatistics taken GUARDED_BY(newsMutex);
    std::chrono::steady_clock::time_point takenAt GUARDED_BY(newsMutex);
};

}  // namespace ZrHmiEventLogger
