#include "server/metrics/Metrics.h"

#include <string_view>
#include <utility>

#include "server/metrics/PrometheusText.h"

namespace hmi {

namespace {

/// The slots that extensions call; the others are reserved.
constexpr std::pair<std::size_t, std::string_view> slotNames[] = {
    {1, "send_message"},        {9, "register_listener_with_settings"},
    {11, "register_listener"},  {12, "unregister_listener"},
    {13, "apply_alarm"},        {14, "drop_event"},
    {16, "read_configuration"}, {17, "reset_events"},
    {18, "announce"},
};

constexpr std::size_t maxNames = 1000;

double number(std::uint64_t count) {
    return static_cast<double>(count);
}

}  // namespace

std::uint64_t& Metrics::logCounter(std::string_view name, std::string_view target) {
    const auto ofTarget = logMessages.find(target);
    if (ofTarget != logMessages.end()) {
        const auto found = ofTarget->second.find(name);
        if (found != ofTarget->second.end())
            return found->second;
    }
    if (logNames >= maxNames)
        return logMessages[""]["other"];
    ++logNames;
    return logMessages[std::string(target)][std::string(name)];
}

void Metrics::countLogMessage(const ZrHmiSrv::Message& message) {
    targets.countLogMessage(message);
    const ZrHmiSrv::Value* const about = message.parameters().lookup("0");
    const bool isText = about && about->type() == ZrHmiSrv::ValueType::string;
    Lock lock(mutex);
    ++logCounter(message.name().view(),
                 isText ? std::string_view(static_cast<const char*>(*about), about->size())
                        : std::string_view());
}

std::string Metrics::text() const {
    PrometheusText text;
    text.family("hmi_host_calls_total", "counter", "Calls of the extension to the server.");
    for (const auto& [slot, name] : slotNames)
        text.sample({{"slot", std::to_string(slot)}, {"name", name}}, number(hostCalls[slot]));
    text.family("hmi_http_requests_total", "counter", "Answered requests.");
    for (std::size_t hundreds = 2; hundreds < requests.size(); ++hundreds)
        text.sample({{"status", std::to_string(hundreds) + "xx"}}, number(requests[hundreds]));
    text.family("hmi_http_abandoned_requests_total", "counter",
                "Requests whose client had gone when their turn came.");
    text.sample({}, number(abandonedRequests));
    requestTimes.write(text, "hmi_http_request_seconds",
                       "From the whole request to the answer, without its sending.");
    confirmationTimes.write(text, "hmi_confirmation_seconds",
                            "Confirmations, until the extension has answered.");
    notificationTimes.write(text, "hmi_notification_seconds",
                            "What a notified event took from the extension's call to the list.");
    text.family("hmi_resets_total", "counter", "Times that all events were replaced.");
    text.sample({}, number(resets));
    text.family("hmi_reset_seconds_total", "counter", "Time spent on replacing all events.");
    text.sample({}, number(resetNanoseconds) / 1e9);
    text.family("hmi_stream_clients", "gauge", "Clients that follow the stream.");
    text.sample({}, static_cast<double>(streamClients));
    text.family("hmi_stream_slow_clients_total", "counter", "Clients dropped as too slow.");
    text.sample({}, number(slowClients));
    targets.write(text);
    Lock lock(mutex);
    text.family("hmi_log_messages_total", "counter", "Messages written to the log, by name.");
    for (const auto& [target, counts] : logMessages)
        for (const auto& [name, count] : counts)
            text.sample({{"name", name}, {"target", target}}, number(count));
    return text.text();
}

}  // namespace hmi
