#include "targetsystem/RecentTranslations.h"

#include <array>
#include <atomic>
#include <utility>

using ZrHmiSrv::Binary;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

TranslationKey ownCopyOf(const TranslationKey& key) {
    const EventReference& event = key.event();
    return key.with({event.eventClass, event.eventId, Text(event.sourceName.view()),
                     Binary(event.types.bytes()), Binary(event.data.bytes())});
}

Value ownCopyOf(const Value& value) {
    if (value.type() == ValueType::string)
        return Text(value.get_text().view());
    Value copy(value.type());
    if (value.is_map())
        for (auto entry = value.begin(); entry != value.end(); ++entry)
            copy.append(Text(entry.name()), ownCopyOf(*entry));
    else if (value.type() == ValueType::vector)
        for (const Value& element : value.get_vector())
            copy << ownCopyOf(element);
    else
        copy = value;
    return copy;
}

}  // namespace

std::size_t RecentTranslations::indexOfThisThread() {
    static std::atomic<std::size_t> threads = 0;
    thread_local const std::size_t index = threads++ % count;
    return index;
}

RecentTranslations& RecentTranslations::at(std::size_t index) {
    static std::array<RecentTranslations, count> all;
    return all[index];
}

std::optional<Value> RecentTranslations::find(std::uint64_t generation, const TranslationKey& key,
                                              bool& isAskedForAgain) {
    if (!mutex.try_lock())
        return std::nullopt;
    Lock lock(mutex, std::adopt_lock);
    if (slots.empty())
        slots.resize(slotCount);
    Slot& slot = slots[key.hash() % slotCount];
    if (slot.generation == generation && slot.key == key)
        return slot.value;
    isAskedForAgain = std::exchange(slot.askedFor, key.hash()) == key.hash();
    return std::nullopt;
}

void RecentTranslations::keep(std::uint64_t generation, const TranslationKey& key,
                              const Value& value) {
    Slot kept{generation, 0, ownCopyOf(key), ownCopyOf(value)};
    if (!mutex.try_lock())
        return;
    Lock lock(mutex, std::adopt_lock);
    std::swap(slots[kept.key.hash() % slotCount], kept);
    lock.unlock();  // what was kept before is released without it
}

}  // namespace ZrHmiEventLogger
