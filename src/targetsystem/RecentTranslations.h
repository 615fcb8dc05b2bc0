#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "host/Value.h"
#include "platform/Mutex.h"
#include "targetsystem/TranslationKey.h"

namespace ZrHmiEventLogger {

/// Translations that were looked up lately on one thread, or one of a few, whatever their target
/// system: copies that share nothing with what other threads use, as a counter of owners that
/// travels between processors costs more than all the rest of a look-up.
class RecentTranslations {
public:
    static constexpr std::size_t count = 16;
    /// Of the calling thread: below `count`.
    static std::size_t indexOfThisThread();
    static RecentTranslations& at(std::size_t index);

    /// `generation`: of the cache for which it was kept, never 0. `isAskedForAgain`: it was asked
    /// for before, and is worth keeping; what passes by once does not push out what is in use.
    std::optional<ZrHmiSrv::Value> find(std::uint64_t generation, const TranslationKey& key,
                                        bool& isAskedForAgain);
    void keep(std::uint64_t generation, const TranslationKey& key, const ZrHmiSrv::Value& value);

private:
    static constexpr std::size_t slotCount = 512;

    struct Slot {
        std::uint64_t generation = 0;  ///< 0: nothing is kept here
        std::size_t askedFor = 0;      ///< the hash of what was asked for last, and not found
        TranslationKey key;
        ZrHmiSrv::Value value;
    };

    alignas(64) TryMutex mutex;
    std::vector<Slot> slots GUARDED_BY(mutex);  ///< by hash; none before the first look-up
};

}  // namespace ZrHmiEventLogger
