#include "server/lanes/WorkerLanes.h"

#include <utility>

namespace hmi {

namespace {

constexpr std::array<std::string_view, 10> labels{
    "local",         "lists",    "long_lists",    "long_localized", "history",
    "confirmations", "commands", "configuration", "details",        "texts"};

bool callsExtension(std::size_t lane) {
    return lane >= static_cast<std::size_t>(Lane::confirmations);
}

}  // namespace

void WorkerLanes::stop() {
    for (CappedLane& lane : lanes)
        lane.stop();
}

void WorkerLanes::join() {
    for (CappedLane& lane : lanes)
        lane.join();
}

std::string WorkerLanes::running() const {
    std::string text;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        if (!callsExtension(lane))
            continue;
        for (const auto& [target, count] : lanes[lane].running())
            text.append(text.empty() ? "" : ", ")
                .append(std::to_string(count) + " " + lanes[lane].name)
                .append(target.empty() ? "" : " of " + target);
    }
    return text;
}

void WorkerLanes::write(PrometheusText& text) const {
    std::array<CappedLane::Usage, labels.size()> usage;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        usage[lane] = lanes[lane].usage();
    text.family("hmi_lane_running", "gauge", "Work that runs, by kind.");
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        text.sample({{"lane", labels[lane]}}, static_cast<double>(usage[lane].running));
    text.family("hmi_lane_waiting", "gauge", "Work that waits for its turn, by kind.");
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        text.sample({{"lane", labels[lane]}}, static_cast<double>(usage[lane].waiting));
    text.family("hmi_lane_refused_total", "counter",
                "Work that was refused because too much waited already, by kind.");
    for (std::size_t lane = 0; lane < lanes.size(); ++lane)
        text.sample({{"lane", labels[lane]}}, static_cast<double>(usage[lane].refused));
}

}  // namespace hmi
