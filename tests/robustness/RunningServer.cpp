#include "robustness/RunningServer.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>
#include <utility>

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <boost/json/serialize.hpp>
#include <gtest/gtest.h>

#include "robustness/Eventually.h"
#include "robustness/LoggerContent.h"
#include "server/Log.h"
#include "support/Simulation.h"

using namespace ZrHmiSrv;

namespace bridge_test {

namespace {

const Context context{"TestDomain"};

std::filesystem::path writeConfiguration(const std::vector<ConfiguredTarget>& targets,
                                         const char* timeout) {
    namespace json = boost::json;
    json::object entries;
    for (const auto& [name, address, enabled] : targets)
        entries[name] = {{"ENABLED", enabled}, {"ADDRESS", address}};
    const json::object configuration{{"TIMEOUT", timeout},
                                     {"LIMIT_EVENT_COUNT", RunningServer::eventLimit},
                                     {"PRELOAD_TRANSLATIONS", false},
                                     {"TARGET_SYSTEMS", std::move(entries)}};
    const auto file = std::filesystem::path(testing::TempDir()) /
                      ("robustness-" + std::to_string(std::random_device()()) + ".json");
    std::ofstream(file) << json::serialize(configuration);
    return file;
}

std::filesystem::path extensionFile() {
    const auto directory = boost::dll::program_location().parent_path();
    return boost::dll::shared_library::decorate(directory / "ZrHmiEventLogger");
}

hmi::ConfigurationPath pathOf(const char* target) {
    return *hmi::ConfigurationPath::parse(std::string("TARGET_SYSTEMS::") + target);
}

void expectEqual(Findings& findings, const char* what, std::size_t is, std::size_t expected) {
    if (is != expected)
        findings.push_back(std::string(what) + " is " + std::to_string(is) + ", not " +
                           std::to_string(expected));
}

/// What "Diagnostics" counts against what is shown.
void compareCounters(Findings& findings, const Value& diagnostics,
                     const std::vector<hmi::EventRecordPtr>& shown, std::size_t active) {
    const auto counter = [&](const char* name) {
        return static_cast<std::size_t>(static_cast<int>(diagnostics.get_map().get(name)));
    };
    std::size_t alarms = 0;
    std::size_t invalid = 0;
    for (const auto& record : shown) {
        const Alarm* const alarm = record->alarm();
        alarms += alarm != nullptr;
        invalid += alarm && alarm->alarm_state() == AlarmState::invalid;
    }
    expectEqual(findings, "activeAlarmsCount", counter("activeAlarmsCount"), active);
    expectEqual(findings, "cachedAlarmsCount", counter("cachedAlarmsCount"), alarms);
    expectEqual(findings, "cachedInvalidAlarmsCount", counter("cachedInvalidAlarmsCount"), invalid);
    expectEqual(findings, "cachedMessagesCount", counter("cachedMessagesCount"),
                shown.size() - alarms);
    expectEqual(findings, "imported alarms and messages",
                counter("importedAlarmsCount") + counter("importedMessagesCount"),
                counter("importedEventsCount"));
    for (const auto& [all, held] : {std::pair("importedEventsCount", shown.size()),
                                    std::pair("importedInvalidAlarmsCount", invalid),
                                    std::pair("importedAlarmsCount", alarms)})
        if (counter(all) < held)
            findings.push_back(std::string(all) + " is less than what is held");
}

}  // namespace

RunningServer::RunningServer()
    : RunningServer({{"Filler", fillerNetId}, {"Packer", packerNetId}}) {}

RunningServer::RunningServer(const std::vector<ConfiguredTarget>& targets, const char* timeout)
    : configurationFile(writeConfiguration(targets, timeout)),
      backend(configurationFile, context, changes, metrics,
              [](const std::string&) { return true; }) {
    hmi::configureLog(hmi::LogLevel::off, hmi::LogFormat::text);
    backend.start(extensionFile());
}

RunningServer::~RunningServer() {
    stop();
    std::filesystem::remove(configurationFile);
}

ErrorValue RunningServer::configure(const char* target, const char* address, bool enabled) {
    const auto path = pathOf(target);
    return backend.configuration
        .change(path, boost::json::object{{"ADDRESS", address}, {"ENABLED", enabled}},
                [&] { return calls.configurationSet(path.text()).value_or(ResultPair()); })
        .answer.result();
}

void RunningServer::remove(const char* target) {
    const auto path = pathOf(target);
    if (backend.configuration.get(path))
        backend.configuration.change(path, std::nullopt, [&] {
            return calls.configurationDeleted(path.text()).value_or(ResultPair());
        });
}

unsigned RunningServer::command(const char* name, Value input) {
    CommandGroup group({Command(name, name, std::move(input))});
    calls.handle(group);
    return group.begin_vector()->extension_result();
}

Value RunningServer::diagnostics(const char* target) {
    CommandGroup group({Command("Diagnostics", "Diagnostics")});
    calls.handle(group);
    const Value answer = group.begin_vector()->read_value();
    return answer.get_map().get("TARGET_SYSTEMS").get_map().get(target);
}

/// By the counters: the log itself leaves repeated complaints out.
std::size_t RunningServer::logged(const char* target, const char* name) const {
    const std::string start = std::string("hmi_log_messages_total{name=\"") + (name ? name : "");
    const std::string about = std::string("\",target=\"") + target + "\"} ";
    std::istringstream lines(metrics.text());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto at = line.find(about);
        if (line.starts_with(start) && at != std::string::npos && (!name || at == start.size()))
            count += std::stoul(line.substr(at + about.size()));
    }
    return count;
}

Findings RunningServer::compare(const char* target, const char* netId) {
    Findings findings = changes.takeConflicts();
    const Value state = diagnostics(target);
    if (state.get_map().get("connectionState") != Value("Good"))
        findings.push_back(std::string(target) + " is not connected");

    EventImages shown;
    hmi::EventFilter ofTarget;
    ofTarget.target = target;
    const auto page = events.select(ofTarget, 0, std::numeric_limits<std::size_t>::max());
    for (const auto& record : page.events) {
        changes.note(*record);
        shown.insert(
            std::visit([](const auto& event) { return imageOf(event); }, record->content.event));
    }
    LoggerContent logger = readLogger(netId, eventLimit);
    acceptUncleared(logger, shown);
    compareImages(findings, "the server", shown, "the logger", logger.events);
    compareCounters(findings, state, page.events, logger.active);
    return findings;
}

Findings RunningServer::differences(const char* target, const char* netId) {
    Findings findings;
    eventually([&] {
        findings = compare(target, netId);
        return findings.empty();
    });
    return findings;
}

void RunningServer::IdWatch::note(const hmi::EventRecord& event) {
    if (!event.alarm() || sourceOf(*event.alarm()).empty())
        return;
    const int id = event.alarm()->id();
    const std::string name = event.target + ' ' + sourceOf(*event.alarm());
    Lock lock(mutex);
    const std::string& owner = owners.try_emplace(id, name).first->second;
    if (owner != name)
        conflicts.push_back("id " + std::to_string(id) + " of " + owner + " given to " + name);
}

Findings RunningServer::IdWatch::takeConflicts() {
    Lock lock(mutex);
    return std::exchange(conflicts, {});
}

}  // namespace bridge_test
