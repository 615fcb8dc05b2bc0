#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "host/Text.h"
#include "host/Value.h"
#include "platform/Automation.h"
#include "platform/Mutex.h"

namespace ZrHmiEventLogger {

/// Events of a plant say the same again and again: their class, their source, their attribute.
/// Texts that were met lately are shared, and so take memory once, unless two threads look in one
/// place at a time. Any thread; one for all threads in common, because not every compiler for
/// Windows destroys what belongs to a thread before it frees its memory.
class TextPool {
public:
    /// In UTF-8. Long texts are not kept.
    ZrHmiSrv::Text of(std::string_view text);
    ZrHmiSrv::Text of(BSTR text);
    ZrHmiSrv::Text of(const GUID& guid);
    /// Events of one kind have arguments of the same types.
    ZrHmiSrv::Binary of(std::span<const std::byte> bytes);

private:
    static constexpr std::size_t maxLength = 128;

    struct GuidText {
        GUID guid{};
        ZrHmiSrv::Text text;
    };
    /// Those whose hashes end alike.
    struct alignas(64) Shard {
        TryMutex mutex;  ///< guards the texts, for one look at a time
        std::array<ZrHmiSrv::Text, 64> lately GUARDED_BY(mutex);
        std::array<GuidText, 16> guids GUARDED_BY(mutex);
    };
    Shard& shardOf(std::size_t hash) { return shards[hash % shards.size()]; }

    std::array<Shard, 16> shards;
};

/// Made at first use: nothing of the host's library may be called while ours is being loaded.
TextPool& texts();

}  // namespace ZrHmiEventLogger
