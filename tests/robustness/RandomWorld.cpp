#include "robustness/RandomWorld.h"

#include <algorithm>
#include <limits>
#include <thread>

#include <boost/json/serialize.hpp>

#include "robustness/Eventually.h"

namespace json = boost::json;
using namespace std::chrono_literals;

namespace bridge_test {

namespace {

hmi::EventFilter ofFiller() {
    hmi::EventFilter filter;
    filter.target = "Filler";
    return filter;
}

std::vector<hmi::EventRecordPtr> eventsOf(const hmi::EventBook& book) {
    return book.select(ofFiller(), 0, std::numeric_limits<std::size_t>::max()).events;
}

std::string text(const json::object& action, const char* key) {
    const auto* value = action.if_contains(key);
    return value ? std::string(value->as_string()) : std::string();
}

}  // namespace

RandomWorld::RandomWorld(bool numbered, std::chrono::milliseconds patience)
    : patience(patience), simulation("[]", numbered) {}

RandomWorld::~RandomWorld() {
    simulation.act(R"({"do": "resume"})");
}

Findings RandomWorld::play(const RandomActions& actions) {
    static const RandomActions end{
        {{"do", "Settle"}},      {{"do", "Reset"}},
        {{"do", "Settle"}},      {{"do", "databaseChanged"}, {"reason", 0}},
        {{"do", "AwaitImport"}}, {{"do", "Settle"}}};
    RandomActions all = actions;
    all.insert(all.end(), end.begin(), end.end());
    for (const json::object& action : all) {
        if (text(action, "do") != "Settle")
            act(action);
        else if (Findings findings = settle(); !findings.empty())
            return findings;
    }
    return {};
}

void RandomWorld::act(const json::object& action) {
    const std::string what = text(action, "do");
    if (what == "Replace") {
        ++replacements;
        const std::size_t before = imports();
        inBackground([this] { replaceTarget("Filler", fillerNetId); });
        awaitImport(before);
    } else if (what == "Reset") {
        inBackground([this] { replaceTarget("Packer", packerNetId); });
    } else if (what == "ForceReconnect") {
        server.command("ForceReconnect", "Filler");
    } else if (what == "AwaitImport") {
        awaitImport(imports());
    } else if (what == "Confirm") {
        confirmInServer(text(action, "alarm"));
    } else {
        actInRuntime(action);
    }
}

void RandomWorld::actInRuntime(json::object action) {
    const std::string what = text(action, "do");
    const std::string alarm = text(action, "alarm");
    if (!alarm.empty() && what != "raise" && !lives.contains(alarm))
        return;
    if (what == "raise" && !simulation.status().at("alarms").as_object().contains(alarm))
        ++lives[alarm];
    if (what == "raise")
        action["source"] = json::object{{"name", alarm}};
    if (what == "raise" || what == "message")
        action["class"] = eventClass;
    if (what == "pause")
        paused.emplace(text(action, "call"), simulation.calls(text(action, "call").c_str()));
    if (what == "resume")
        paused.clear();
    simulation.act(json::serialize(action));
}

/// Waits a moment for it to end, unless it hangs where a call is paused.
void RandomWorld::inBackground(std::function<void()> task) {
    background.push_back(std::async(std::launch::async, std::move(task)));
    within([&] { return background.back().wait_for(0ms) == std::future_status::ready || hangs(); });
}

void RandomWorld::replaceTarget(const char* target, const char* netId) {
    Lock lock(configurationMutex);
    server.remove(target);
    server.configure(target, netId, true);
}

void RandomWorld::confirmInServer(const std::string& alarm) {
    if (hangs())
        return;
    for (const auto& record : eventsOf(server.events))
        if (record->alarm() && sourceOf(*record->alarm()) == alarm)
            server.calls.confirm(*record->alarm());
}

void RandomWorld::awaitImport(std::size_t importsBefore) {
    const auto deadline = std::chrono::steady_clock::now() + 600ms;
    while (imports() == importsBefore && !hangs() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(1ms);
}

bool RandomWorld::hangs() {
    return std::any_of(paused.begin(), paused.end(), [&](const auto& entry) {
        return simulation.calls(entry.first.c_str()) > entry.second;
    });
}

std::size_t RandomWorld::failures() const {
    return replacements + server.logged("Filler", "TARGET_SYSTEM_CONNECT_FAILED") +
           server.logged("Filler", "CORVANE_EVENTLOGGER_ERROR");
}

template <class Condition>
bool RandomWorld::within(Condition condition) const {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

/// Nothing waits any more, and all that was notified has been handled.
Findings RandomWorld::settle() {
    paused.clear();
    simulation.act(R"([{"do": "resume"}, {"do": "release"}])");
    background.clear();  // waits
    const std::string fence = "fence " + std::to_string(++fences);
    const auto arrived = [&] {
        const auto events = eventsOf(server.events);
        return std::any_of(events.begin(), events.end(), [&](const auto& record) {
            const auto* source = record->event().payload().lookup("sourceName");
            return source && source->get_string() == fence;
        });
    };
    simulation.act(json::serialize(json::object{{"do", "message"},
                                                {"class", eventClass},
                                                {"event", 3},
                                                {"source", json::object{{"name", fence}}}}));
    if (!within(arrived))
        return {"a message was lost: " + fence};
    return look();
}

Findings RandomWorld::look() {
    Findings findings;
    within([&] {
        findings = server.compare("Filler", fillerNetId);
        if (findings.empty() && !isReset())
            findings.push_back("the server shows ids that the extension has not");
        return findings.empty();
    });
    if (findings.empty())
        checkIds(findings);
    return findings;
}

/// What a former target system or import has shown may look the same for a moment.
bool RandomWorld::isReset() {
    struct Receiver final : ZrHmiSrv::IEventReceiver {
        std::set<int> ids;
        void replace_events(const char* target, std::span<const ZrHmiSrv::Event> events) override {
            for (const ZrHmiSrv::Event& event : events)
                if (target == std::string_view("Filler") && event.payload().get_alarm().isset())
                    ids.insert(event.payload().get_alarm().id());
        }
    } provided;
    server.calls.provideEvents(provided);
    std::set<int> ids;
    for (const auto& record : eventsOf(server.events))
        if (record->alarm())
            ids.insert(record->alarm()->id());
    return ids == provided.ids;
}

void RandomWorld::checkIds(Findings& findings) {
    const std::size_t failuresNow = failures();
    Ids now;
    const auto living = simulation.status().at("alarms").as_object();
    for (const auto& record : eventsOf(server.events)) {
        const auto* const alarm = record->alarm();
        const std::string name =
            alarm ? sourceOf(*alarm) : imageOf(std::get<ZrHmiSrv::Message>(record->content.event));
        if (!alarm)
            now[name].insert(record->id.text());
        else if (living.contains(name))
            now["alarm " + name + ", life " + std::to_string(lives[name])].insert(
                record->id.text());
    }
    // An alarm that lives has kept its id among those that its name has had; messages keep theirs.
    const bool comparable = failures() == failuresThen;
    for (const auto& [name, ids] : shown) {
        const auto still = now.find(name);
        if (!comparable || still == now.end())
            continue;
        const auto kept = std::ranges::count_if(
            ids, [&](const std::string& id) { return still->second.contains(id); });
        if (kept == 0 || (name.starts_with("message") && kept != std::ssize(ids)))
            findings.push_back(name + " has lost its id");
    }
    shown = std::move(now);
    failuresThen = failuresNow;
}

}  // namespace bridge_test
