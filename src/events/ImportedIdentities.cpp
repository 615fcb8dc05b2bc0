#include "events/ImportedIdentities.h"

#include <string_view>

#include <boost/container_hash/hash.hpp>

#include "events/EventParameters.h"

using ZrHmiSrv::Message;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

void combine(std::size_t& seed, std::string_view text) {
    boost::hash_combine(seed, std::hash<std::string_view>()(text));
}

void combine(std::size_t& seed, const Value* value) {
    boost::hash_combine(seed, value != nullptr);
    if (!value)
        return;
    if (value->type() == ValueType::binary) {
        const auto content = value->get_binary();
        const auto bytes = content.bytes();
        return combine(seed,
                       std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    }
    if (value->is_number())
        return boost::hash_combine(seed, static_cast<double>(*value));
    combine(seed, value->get_text().view());
}

}  // namespace

ImportedIdentities::MessageIdentity ImportedIdentities::identityOf(const Message& message) {
    std::size_t digest = 0;
    for (const auto* key : {&keys().eventClass, &keys().eventId, &keys().sourceId, &keys().sourceName,
                            &keys().sourceGuid, &keys().numArguments, &keys().types, &keys().data})
        combine(digest, message.parameters().lookup(key->view()));
    return {message.time_raised().nanoseconds(), digest};
}

std::size_t ImportedIdentities::Hash::operator()(const MessageIdentity& identity) const {
    std::size_t seed = identity.digest;
    boost::hash_combine(seed, identity.timeRaised);
    return seed;
}

void ImportedIdentities::addMessage(const Message& message) {
    messages.insert(identityOf(message));
}

void ImportedIdentities::addUnsettled(const UnsettledAlarm& alarm, const AlarmInstance& instance) {
    addAlarm(alarm.key);
    unsettledAlarms.insert_or_assign(alarm.key, alarm.hostId);
    unsettledInstances.insert_or_assign(instance, alarm.key);
}

bool ImportedIdentities::takeMessage(const Message& message) {
    if (messages.empty())
        return false;
    const auto found = messages.find(identityOf(message));
    if (found == messages.end())
        return false;
    messages.erase(found);
    return true;
}

std::optional<UnsettledAlarm> ImportedIdentities::unsettled(const AlarmKey& key) const {
    const auto found = unsettledAlarms.find(key);
    if (found == unsettledAlarms.end())
        return std::nullopt;
    return UnsettledAlarm{key, found->second};
}

std::optional<UnsettledAlarm> ImportedIdentities::unsettled(const AlarmInstance& instance) const {
    const auto found = unsettledInstances.find(instance);
    return found != unsettledInstances.end() ? unsettled(found->second) : std::nullopt;
}

}  // namespace ZrHmiEventLogger
