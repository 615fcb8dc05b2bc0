#include <string_view>

#include "server/history/HistoryRow.h"

namespace hmi {

using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace {

/// FNV-1a: the same in every run, on every system.
class Digest {
public:
    void add(std::string_view bytes) {
        addNumber(bytes.size());
        for (const char byte : bytes)
            addByte(static_cast<unsigned char>(byte));
    }
    void add(const Value* value) {
        if (!value)
            return addByte(0);
        addByte(value->is_number() ? 1 : static_cast<unsigned char>(value->type()));
        if (value->is_number())
            addNumber(static_cast<std::uint64_t>(static_cast<long long>(*value)));
        else if (value->type() == ValueType::string)
            add(value->get_text().view());
        else if (value->type() == ValueType::binary) {
            for (const std::byte byte : value->get_binary().bytes())
                addByte(static_cast<unsigned char>(byte));
        }
    }
    /// The best of its bits.
    std::int64_t bits(int count) const {
        return static_cast<std::int64_t>((hash ^ hash >> 29) * 0xbf58476d1ce4e5b9U >>
                                         (64 - count));
    }

private:
    void addByte(unsigned char byte) { hash = (hash ^ byte) * 0x100000001b3U; }
    void addNumber(std::uint64_t number) {
        for (int shift = 0; shift < 64; shift += 8)
            addByte(static_cast<unsigned char>(number >> shift));
    }

    std::uint64_t hash = 0xcbf29ce484222325U;
};

}  // namespace

EventIdentity EventIdentity::of(const EventRecord& event) {
    const Value& parameters = event.event().payload();
    Digest origin;
    origin.add(event.event().name().view());
    origin.add(event.event().domain().view());
    for (const char* name :
         {"targetName", "eventClass", "eventId", "sourceId", "sourceName", "sourceGuid"})
        origin.add(parameters.lookup(name));
    Digest arguments;
    for (const char* name : {"numArguments", "types", "data"})
        arguments.add(parameters.lookup(name));
    const auto raised =
        std::visit([](const auto& content) { return content.time_raised(); }, event.content.event);
    return {raised, origin.bits(39) << 24 | arguments.bits(24)};
}

}  // namespace hmi
