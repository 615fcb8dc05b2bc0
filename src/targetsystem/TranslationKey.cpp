#include "targetsystem/TranslationKey.h"

#include <string_view>
#include <utility>

#include <boost/container_hash/hash.hpp>

using ZrHmiSrv::Binary;

namespace ZrHmiEventLogger {

namespace {

std::string_view bytesOf(const Binary& binary) {
    const auto bytes = binary.bytes();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string_view bytesOf(const GUID& guid) {
    return {reinterpret_cast<const char*>(&guid), sizeof guid};
}

std::size_t hashOf(TranslationKind kind, const EventReference& event, LCID language) {
    const std::hash<std::string_view> hashBytes;
    std::size_t hash = hashBytes(bytesOf(event.eventClass));
    boost::hash_combine(hash, static_cast<std::uint8_t>(kind));
    boost::hash_combine(hash, event.eventId);
    boost::hash_combine(hash, language);
    boost::hash_combine(hash, hashBytes(event.sourceName.view()));
    boost::hash_combine(hash, hashBytes(bytesOf(event.types)));
    boost::hash_combine(hash, hashBytes(bytesOf(event.data)));
    return hash;
}

}  // namespace

TranslationKey::TranslationKey(TranslationKind kind, EventReference event, LCID language)
    : kind(kind),
      lcid(language),
      reference(std::move(event)),
      hashValue(hashOf(kind, reference, language)) {}

TranslationKey TranslationKey::with(EventReference event) const {
    TranslationKey same;
    same.kind = kind;
    same.lcid = lcid;
    same.reference = std::move(event);
    same.hashValue = hashValue;
    return same;
}

bool operator==(const TranslationKey& a, const TranslationKey& b) noexcept {
    const EventReference& first = a.reference;
    const EventReference& second = b.reference;
    return a.hashValue == b.hashValue && a.kind == b.kind && a.lcid == b.lcid &&
           bytesOf(first.eventClass) == bytesOf(second.eventClass) &&
           first.eventId == second.eventId && first.sourceName == second.sourceName &&
           bytesOf(first.types) == bytesOf(second.types) &&
           bytesOf(first.data) == bytesOf(second.data);
}

}  // namespace ZrHmiEventLogger
