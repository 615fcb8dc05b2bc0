#include "server/extension/TroubleLog.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "server/Log.h"

namespace hmi {

using ZrHmiSrv::Message;
using ZrHmiSrv::Value;

namespace {

constexpr std::array<std::string_view, 3> troubles{
    "CORVANE_EVENTLOGGER_ERROR", "TARGET_SYSTEM_CONNECT_FAILED", "CAN_NOT_CREATE_PROXY"};
constexpr std::string_view connected = "TARGET_SYSTEM_CONNECTED";

constexpr auto pause = std::chrono::minutes(1);
constexpr std::size_t maxTargets = 1000;
constexpr std::size_t maxReports = 16;  ///< of a target system that says something new each time

std::string parameter(const Message& message, const char* name) {
    const Value* const value = message.parameters().lookup(name);
    return value ? value->get_string() : std::string();
}

/// "Filler: TARGET_SYSTEM_CONNECT_FAILED 0x98110007"
std::string textOf(const Message& message, const std::string& target) {
    std::string text = target + ": " + std::string(message.name().view());
    for (const char* name : {"1", "2", "3"}) {
        const std::string part = parameter(message, name);
        if (!part.empty() && part != "-1")
            text.append(" ").append(part);
    }
    return text;
}

std::string timesText(std::uint64_t repeated) {
    return repeated == 0 ? "" : " (and " + std::to_string(repeated) + " times since the last line)";
}

}  // namespace

/// How often it was reported since the last line about it.
std::uint64_t TroubleLog::forget(const std::string& target) {
    Lock lock(mutex);
    const auto found = targets.find(target);
    if (found == targets.end())
        return 0;
    std::uint64_t repeated = 0;
    for (const auto& report : found->second)
        repeated += report.second.repeated;
    targets.erase(found);
    return repeated;
}

bool TroubleLog::pass(Message& message, Clock::time_point now) {
    const std::string_view name = message.name().view();
    const bool isConnected = name == connected;
    if (!isConnected && std::find(troubles.begin(), troubles.end(), name) == troubles.end())
        return true;
    const std::string target = parameter(message, "0");
    if (isConnected) {
        log(LogLevel::info, target + ": connected" + timesText(forget(target)));
        return true;
    }
    const std::string text = textOf(message, target);
    std::uint64_t repeated = 0;
    {
        Lock lock(mutex);
        if (targets.size() >= maxTargets && !targets.contains(target))
            targets.clear();
        Reports& reports = targets[target];
        if (reports.size() >= maxReports && !reports.contains(text))
            reports.clear();
        const auto [report, isNew] = reports.try_emplace(text);
        if (!isNew && now - report->second.written < pause) {
            ++report->second.repeated;
            return false;
        }
        repeated = std::exchange(report->second.repeated, 0);
        report->second.written = now;
    }
    log(LogLevel::warning, text + timesText(repeated));
    if (repeated > 0)
        message.parameters().insert_or_update("repeated", static_cast<long long>(repeated));
    return true;
}

}  // namespace hmi
