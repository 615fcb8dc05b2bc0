#include "server/metrics/TargetMetrics.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "server/events/EventRecord.h"

namespace hmi {

using ZrHmiSrv::Message;
using ZrHmiSrv::Value;

namespace {

constexpr std::size_t maxTargets = 1000;

/// The log entries that the extension writes for a notification of a logger. Messages have none:
/// each is published.
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> notificationEntries{{
    {"NEW_ALARM_RAISED", "raised"},
    {"ACTIVE_ALARM_RAISED_AGAIN", "raised"},
    {"KNOWN_ALARM_CLEARED", "cleared"},
    {"UNKNOWN_ALARM_CLEARED", "cleared"},
    {"KNOWN_ALARM_CONFIRMED", "confirmed"},
    {"UNKNOWN_ALARM_CONFIRMED", "confirmed"},
    {"DATABASE_CHANGED", "database_changed"},
}};

double number(const Value& parameters, const char* name) {
    const Value* const value = parameters.lookup(name);
    return value && value->is_number() ? static_cast<double>(*value) : 0;
}

std::uint64_t count(const Value& parameters, const char* name) {
    return static_cast<std::uint64_t>(std::max(0.0, number(parameters, name)));
}

}  // namespace

TargetMetrics::Counters& TargetMetrics::of(const std::string& target) {
    const auto found = targets.find(target);
    if (found != targets.end())
        return found->second;
    return targets[targets.size() < maxTargets ? target : "other"];
}

void TargetMetrics::countHostCall(const Value& event, std::string_view operation) {
    const std::string target = targetOf(event);
    Lock lock(mutex);
    Counters& counters = of(target);
    ++counters.hostCalls[std::string(operation)];
    if (operation == "message")
        countNotification(counters, "message_sent");
}

void TargetMetrics::countNotification(Counters& counters, std::string_view kind) {
    ++counters.notifications[std::string(kind)];
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    counters.lastNotification = std::chrono::duration<double>(now).count();
}

void TargetMetrics::countForgotten(const std::string& target) {
    Lock lock(mutex);
    ++of(target).forgotten;
}

void TargetMetrics::countConfirmation(const std::string& target, ZrHmiSrv::ErrorValue result) {
    Lock lock(mutex);
    ++of(target).confirmations[std::to_string(static_cast<std::uint32_t>(result))];
}

void TargetMetrics::countLogMessage(const Message& message) {
    const Value& parameters = message.parameters();
    const Value* const target = parameters.lookup("0");
    if (!target)
        return;
    const auto name = message.name().view();
    const auto* const entry = std::find_if(notificationEntries.begin(), notificationEntries.end(),
                                           [&](const auto& known) { return known.first == name; });
    const std::string targetName = target->get_string();
    Lock lock(mutex);
    if (entry != notificationEntries.end()) {
        countNotification(of(targetName), entry->second);
    } else if (name == "LOGGED_EVENTS_IMPORTED") {
        ++of(targetName).imports;
        of(targetName).importSeconds += number(parameters, "6") / 1000;
    } else if (name == "TRANSLATION_CACHE_USED") {
        of(targetName).cacheLookUps["hit"] = count(parameters, "1");
        of(targetName).cacheLookUps["miss"] = count(parameters, "2");
    }
}

void TargetMetrics::write(PrometheusText& text) const {
    Lock lock(mutex);
    writeCounts(text, "hmi_target_host_calls_total", "operation",
                "Events that the extension published, by what became of them.",
                &Counters::hostCalls);
    writeCounts(text, "hmi_target_notifications_total", "kind",
                "Notifications of the logger, by kind.", &Counters::notifications);
    text.family("hmi_target_last_notification_timestamp_seconds", "gauge",
                "When the logger last notified of something.");
    for (const auto& [target, counters] : targets)
        if (counters.lastNotification > 0)
            text.sample({{"target", target}}, counters.lastNotification);
    writeCounts(text, "hmi_target_confirmations_total", "result",
                "Operator confirmations by result code.", &Counters::confirmations);
    writeCounts(text, "hmi_target_translations_total", "cache",
                "Texts that were looked up, as the extension last told.", &Counters::cacheLookUps);
    text.family("hmi_target_events_forgotten_total", "counter",
                "Events that the extension dropped.");
    for (const auto& [target, counters] : targets)
        text.sample({{"target", target}}, static_cast<double>(counters.forgotten));
    text.family("hmi_target_imports_total", "counter", "Imports after connecting.");
    for (const auto& [target, counters] : targets)
        text.sample({{"target", target}}, static_cast<double>(counters.imports));
    text.family("hmi_target_import_seconds_total", "counter", "Time spent on imports.");
    for (const auto& [target, counters] : targets)
        text.sample({{"target", target}}, counters.importSeconds);
}

void TargetMetrics::writeCounts(PrometheusText& text, std::string_view name, std::string_view label,
                                std::string_view help, Counts Counters::*counts) const {
    text.family(name, "counter", help);
    for (const auto& [target, counters] : targets)
        for (const auto& [value, count] : counters.*counts)
            text.sample({{"target", target}, {label, value}}, static_cast<double>(count));
}

}  // namespace hmi
