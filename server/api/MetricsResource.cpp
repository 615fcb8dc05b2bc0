#include "server/api/MetricsResource.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "server/metrics/ProcessMetrics.h"

namespace hmi {

using ZrHmiSrv::Value;

namespace {

/// "importedEventsCount" becomes "hmi_target_imported_events".
std::string metricName(std::string_view key) {
    constexpr std::string_view suffix = "Count";
    if (key.ends_with(suffix))
        key.remove_suffix(suffix.size());
    std::string name = "hmi_target_";
    for (const char c : key) {
        const bool capital = c >= 'A' && c <= 'Z';
        const bool plain = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        if (capital)
            name += '_';
        name += capital ? static_cast<char>(c + 32) : plain ? c : '_';
    }
    return name;
}

struct Sample {
    std::string target;
    std::string part;  ///< the name within a group of numbers, else empty
    double value;
};
using Families = std::map<std::string, std::vector<Sample>>;

/// Every number that the extension tells of a target system is a metric; a map of numbers is one
/// with a label "part".
void collect(Families& families, const std::string& target, const Value& fields) {
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        const std::string name = metricName(field.name());
        if (field->is_number())
            families[name].push_back({target, {}, static_cast<double>(*field)});
        for (auto part = field->begin(); part != field->end(); ++part) {
            if (part->is_number())
                families[name].push_back({target, part.name(), static_cast<double>(*part)});
        }
    }
}

double number(std::size_t count) {
    return static_cast<double>(count);
}

}  // namespace

// Local, though it asks the extension: diagnostics wait for no logger, and are wanted most while
// calls hang.
void MetricsResource::addRoutes(Router& router) {
    router.add(Method::get, "/metrics", [this](const auto&) { return read(); });
}

Response MetricsResource::read() {
    PrometheusText text;
    text.append(metrics.text());
    writeEvents(text);
    writeTargets(text);
    writeProcess(text);
    writeFeed(text);
    lanes.write(text);
    texts.write(text);
    if (history)
        history->write(text);
    Response response;
    response.contentType = "text/plain; version=0.0.4; charset=utf-8";
    response.body = text.text();
    return response;
}

void MetricsResource::writeEvents(PrometheusText& text) const {
    const auto targets = book.countsByTarget();
    text.family("hmi_events", "gauge", "Events in the list.");
    for (const auto& [target, counts] : targets) {
        text.sample({{"target", target}, {"kind", "alarm"}}, number(counts.alarms));
        text.sample({{"target", target}, {"kind", "message"}}, number(counts.messages));
    }
    text.family("hmi_alarms", "gauge", "Alarms in the list that ask for attention.");
    for (const auto& [target, counts] : targets) {
        text.sample({{"target", target}, {"state", "active"}}, number(counts.active));
        text.sample({{"target", target}, {"state", "unconfirmed"}}, number(counts.unconfirmed));
    }
}

void MetricsResource::writeFeed(PrometheusText& text) const {
    text.family("hmi_feed_lost_total", "counter",
                "Changes that a listener had no room for, by listener.");
    for (const ChangeFeed::Listener& listener : feed.all())
        text.sample({{"listener", listener.name}}, static_cast<double>(listener.lost));
}

void MetricsResource::writeTargets(PrometheusText& text) {
    const Value targets = extension.diagnostics();
    Families families;
    text.family("hmi_target_state", "gauge", "1 for the connection state that the target is in.");
    for (auto target = targets.begin(); target != targets.end(); ++target) {
        const Value* const current = target->lookup("connectionState");
        for (const char* state : {"Good", "Not Connected", "Disabled"})
            text.sample({{"target", target.name()}, {"state", state}},
                        current && current->get_string() == std::string_view(state) ? 1 : 0);
        collect(families, target.name(), *target);
    }
    for (const auto& [name, samples] : families) {
        text.family(name, "gauge", "As the extension's diagnostics tell it.");
        for (const Sample& sample : samples) {
            if (sample.part.empty())
                text.sample({{"target", sample.target}}, sample.value);
            else
                text.sample({{"target", sample.target}, {"part", sample.part}}, sample.value);
        }
    }
}

}  // namespace hmi
