#include "robustness/RunningServer.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <random>

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <gtest/gtest.h>

#include "robustness/LoggerContent.h"
#include "server/Log.h"
#include "support/Simulation.h"

using namespace ZrHmiSrv;

namespace bridge_test {

namespace {

const Context context{"TestDomain"};

std::string entry(const char* name, const char* address) {
    return std::string("\"") + name + R"(": {"ENABLED": true, "ADDRESS": ")" + address + "\"}";
}

std::filesystem::path writeConfiguration(const std::string& targets, const char* timeout) {
    const auto file = std::filesystem::path(testing::TempDir()) /
                      ("robustness-" + std::to_string(std::random_device()()) + ".json");
    std::ofstream(file) << R"({"TIMEOUT": ")" << timeout << R"(", "LIMIT_EVENT_COUNT": )"
                        << RunningServer::eventLimit
                        << R"(, "PRELOAD_TRANSLATIONS": false, "TARGET_SYSTEMS": )" << targets
                        << "}";
    return file;
}

std::filesystem::path extensionFile() {
    const auto directory = boost::dll::program_location().parent_path();
    return boost::dll::shared_library::decorate(directory / "ZrHmiEventLogger");
}

hmi::ConfigurationPath pathOf(const char* target) {
    return *hmi::ConfigurationPath::parse(std::string("TARGET_SYSTEMS::") + target);
}

std::size_t counter(const Value& diagnostics, const char* name) {
    return static_cast<std::size_t>(static_cast<int>(diagnostics.get_map().get(name)));
}

}  // namespace

RunningServer::RunningServer()
    : RunningServer("{" + entry("Filler", fillerNetId) + "," + entry("Packer", packerNetId) + "}",
                    "PT3S") {}

RunningServer::RunningServer(const std::string& targets, const char* timeout)
    : configurationFile(writeConfiguration(targets, timeout)),
      backend(configurationFile, context, changes, metrics) {
    hmi::configureLog(hmi::LogLevel::off, hmi::LogFormat::text);
    backend.start(extensionFile());
}

RunningServer::~RunningServer() {
    stop();
    std::filesystem::remove(configurationFile);
}

void RunningServer::configure(const char* target, const char* address, bool enabled) {
    const auto path = pathOf(target);
    backend.configuration.change(
        path, boost::json::object{{"ADDRESS", address}, {"ENABLED", enabled}},
        [&] { return calls.configurationSet(path.text()).value_or(ResultPair()); });
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

std::size_t RunningServer::logged(const char* target, const char* name) const {
    const auto entries = backend.log.read(0, std::numeric_limits<std::size_t>::max()).entries;
    return static_cast<std::size_t>(
        std::count_if(entries.begin(), entries.end(), [&](const auto& entry) {
            return (!name || entry->message.name().view() == name) &&
                   entry->message.parameters().get_map().get("0") == Value(target);
        }));
}

Findings RunningServer::compare(const char* target, const char* netId) {
    Findings findings;
    const Value state = diagnostics(target);
    if (state.get_map().get("connectionState") != Value("Good"))
        findings.push_back(std::string(target) + " is not connected");

    EventImages shown;
    hmi::EventFilter ofTarget;
    ofTarget.target = target;
    const auto page = events.select(ofTarget, 0, std::numeric_limits<std::size_t>::max());
    for (const auto& record : page.events)
        shown.insert(
            std::visit([](const auto& event) { return imageOf(event); }, record->content.event));
    const LoggerContent logger =
        readLogger(ZrEventLoggerFnxProxyLib::CreateInstance, netId, eventLimit);
    compareImages(findings, "the server", shown, "the logger", logger.events);
    if (counter(state, "cachedAlarmsCount") + counter(state, "cachedMessagesCount") !=
            shown.size() ||
        counter(state, "activeAlarmsCount") != logger.active)
        findings.push_back(std::string("the counters of ") + target + " do not add up");
    return findings;
}

}  // namespace bridge_test
