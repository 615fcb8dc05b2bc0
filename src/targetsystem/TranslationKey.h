#pragma once

#include <cstddef>
#include <cstdint>

#include "targetsystem/EventReference.h"

namespace ZrHmiEventLogger {

enum class TranslationKind : std::uint8_t { eventText, eventClassName, sourceName, guidance };

/// What is translated into which language. `event` holds only what the kind depends on. The hash
/// is computed once, and making or copying a key allocates nothing: texts and bytes are shared.
class TranslationKey {
public:
    TranslationKey() = default;
    TranslationKey(TranslationKind kind, EventReference event, LCID language);
    /// The same key, whose texts and bytes are held by this event, which is equal to its own.
    TranslationKey with(EventReference event) const;

    const EventReference& event() const noexcept { return reference; }
    LCID language() const noexcept { return lcid; }
    std::size_t hash() const noexcept { return hashValue; }
    friend bool operator==(const TranslationKey& a, const TranslationKey& b) noexcept;

private:
    TranslationKind kind{};
    LCID lcid = 0;
    EventReference reference;
    std::size_t hashValue = 0;
};

struct HashOfTranslationKey {
    std::size_t operator()(const TranslationKey& key) const noexcept { return key.hash(); }
};

}  // namespace ZrHmiEventLogger
