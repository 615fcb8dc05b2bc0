#include "robustness/Fleet.h"

#include <limits>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "robustness/Eventually.h"

namespace bridge_test {

namespace {

/// An event from before everything: a message, and an alarm whose end nobody has logged.
std::string oldLog() {
    const auto entry = [](int event, const char* source, const char* time) {
        return R"({"class": ")" + std::string(eventClass) + R"(", "event": )" +
               std::to_string(event) + R"(, "source": {"name": ")" + source +
               R"("}, "timeRaised": ")" + time + "\"}";
    };
    return "[" + entry(3, "old news", "2024-05-01T12:00:00Z") + "," +
           entry(2, "lost end", "2024-05-01T13:00:00Z") + "]";
}

std::string event(int id, const char* source) {
    return R"("class": ")" + std::string(eventClass) + R"(", "event": )" + std::to_string(id) +
           R"(, "source": {"name": ")" + source + R"("}, "arguments": [7], "json": "{}")";
}

std::vector<Machine> makeMachines(std::size_t size) {
    std::vector<Machine> machines;
    for (std::size_t i = 0; i < size; ++i)
        machines.push_back({"M" + std::to_string(i), "5.1." + std::to_string(i / 200) + '.' +
                                                         std::to_string(i % 200) + ".1.1"});
    return machines;
}

std::vector<std::string> netIdsOf(const std::vector<Machine>& machines) {
    std::vector<std::string> netIds;
    for (const Machine& machine : machines)
        netIds.push_back(machine.netId);
    return netIds;
}

std::vector<ConfiguredTarget> targetsOf(const std::vector<Machine>& machines) {
    std::vector<ConfiguredTarget> targets;
    for (const Machine& machine : machines)
        targets.push_back({machine.name, machine.netId, false});
    return targets;
}

}  // namespace

std::string raiseAction(const char* name, int id, const char* more) {
    return R"({"do": "raise", "alarm": ")" + std::string(name) + "\", " + event(id, name) + more +
           "}";
}

std::string messageAction(const char* name, const char* more) {
    return R"({"do": "message", )" + event(3, name) + more + "}";
}

std::string alarmAction(const char* verb, const char* alarm) {
    return R"({"do": ")" + std::string(verb) + R"(", "alarm": ")" + alarm + "\"}";
}

Fleet::Fleet(std::size_t size)
    : machines(makeMachines(size)),
      simulation(netIdsOf(machines), oldLog()),
      server((act(R"({"do": "refuse", "hresult": "0x98110745"})"), targetsOf(machines))) {}

void Fleet::accept(const std::function<std::string(std::size_t)>& plan) {
    // What is called on a logger before that is a call of every runtime.
    forEach([&](const Machine& machine) {
        EXPECT_TRUE(eventually([&] {
            const auto status = simulation.status(machine.netId.c_str());
            return status.at("calls").at("ConnectWithSettings").to_number<int>() > 0;
        }));
    });
    for (std::size_t i = 0; i < machines.size(); ++i)
        simulation.act("[" + plan(i) + R"({"do": "accept"}])", machines[i].netId.c_str());
}

void Fleet::act(const std::string& actions) {
    forEach([&](Machine& machine) { simulation.act(actions, machine.netId.c_str()); });
}

void Fleet::forEach(const std::function<void(Machine&)>& visit) {
    for (Machine& machine : machines)
        visit(machine);
}

void Fleet::settle(bool importAgain) {
    std::vector<Machine*> waiting;
    std::map<const Machine*, std::int64_t> importsBefore;
    /// False until an import has begun that was asked for here.
    const auto isReadAgain = [&](const Machine& machine) {
        const auto imports = simulation.calls("GetLoggedEvents", machine.netId.c_str());
        const auto [before, first] = importsBefore.try_emplace(&machine, imports);
        if (first)
            server.command("ForceReconnect", machine.name.c_str());
        return imports > before->second;
    };
    forEach([&](Machine& machine) {
        if (machine.findings.empty())
            waiting.push_back(&machine);
    });
    if (waiting.empty())
        return;
    eventually(
        [&] {
            counts.clear();
            if (waiting.front() != &machines.front())
                counts = server.events.countsByTarget();
            std::erase_if(waiting, [&](Machine* machine) {
                return hasArrived(*machine) &&
                       (!importAgain || machine->struck.empty() || isReadAgain(*machine)) &&
                       agrees(*machine);
            });
            return waiting.empty();
        },
        patience);
    for (Machine* machine : waiting)
        machine->findings = differences(*machine);
}

/// Whether every notification has been delivered.
bool Fleet::hasArrived(Machine& machine) {
    const auto status = simulation.status(machine.netId.c_str());
    for (const auto& entry : status.at("failed").as_object())
        machine.struck = entry.key();
    if (status.at("queued") == 0)
        return true;
    simulation.act(R"({"do": "release"})", machine.netId.c_str());
    return false;
}

/// To ask the logger would be a call of the machine's own: where nothing has gone wrong yet, as
/// much has to be shown as of the first machine, once that shows what it has to.
bool Fleet::agrees(const Machine& machine) {
    if (&machine == &machines.front() || !machine.struck.empty())
        return differences(machine).empty();
    const auto model = counts.find(machines.front().name);
    const auto found = counts.find(machine.name);
    const auto numbers = [](const hmi::TargetCounts& of) {
        return std::tuple(of.alarms, of.messages, of.active, of.unconfirmed);
    };
    return model != counts.end() && found != counts.end() &&
           numbers(model->second) == numbers(found->second);
}

Findings Fleet::differences(const Machine& machine) {
    return server.compare(machine.name.c_str(), machine.netId.c_str());
}

hmi::EventRecordPtr Fleet::shown(const Machine& machine, const char* alarm) const {
    hmi::EventFilter filter;
    filter.target = machine.name;
    for (const auto& record :
         server.events.select(filter, 0, std::numeric_limits<std::size_t>::max()).events)
        if (record->alarm() && sourceOf(*record->alarm()) == alarm)
            return record;
    return nullptr;
}

bool Fleet::isConfirmed(const Machine& machine, const char* alarm) {
    const auto status = simulation.status(machine.netId.c_str());
    const auto* found = status.at("alarms").as_object().if_contains(alarm);
    return found && found->at("confirmed").as_bool();
}

void Fleet::findComplaints() {
    const std::set<std::string_view> complaints{"UNKNOWN_ALARM_CLEARED", "UNKNOWN_ALARM_CONFIRMED",
                                                "CORVANE_EVENTLOGGER_ERROR", "FORGET_EVENT"};
    for (const auto& entry : server.log.read(0, std::numeric_limits<std::size_t>::max()).entries) {
        const auto name = entry->message.name().view();
        const auto about = entry->message.parameters().get_map().get("0");
        if (complaints.contains(name))
            forEach([&](Machine& machine) {
                if (about == ZrHmiSrv::Value(machine.name))
                    machine.findings.emplace_back(name);
            });
    }
}

void Fleet::stopAndFindLeaks() {
    server.stop();
    forEach([&](Machine& machine) {
        std::string left;
        eventually(
            [&] {
                const auto status = simulation.status(machine.netId.c_str());
                const auto count = [&](const char* what) {
                    return status.at(what).to_number<std::int64_t>();
                };
                left = std::to_string(count("liveObjects")) + " references and " +
                       std::to_string(count("advised")) + " sinks are left";
                return count("liveObjects") == 0 && count("advised") == 0 && hasArrived(machine);
            },
            patience)
            ? void()
            : machine.findings.push_back(left);
    });
}

}  // namespace bridge_test
