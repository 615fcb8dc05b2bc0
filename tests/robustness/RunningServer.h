#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "robustness/EventImage.h"
#include "server/Backend.h"

namespace bridge_test {

/// A target system as it is configured.
struct ConfiguredTarget {
    std::string name;
    std::string address;
    bool enabled = true;
};

/// hmi-server without its network: the extension is loaded and runs in it. Any thread may call it,
/// also while it stops.
class RunningServer {
public:
    static constexpr unsigned eventLimit = 60;

    /// With the targets "Filler" and "Packer" of the simulation.
    RunningServer();
    explicit RunningServer(const std::vector<ConfiguredTarget>& targets,
                           const char* timeout = "PT3S");
    ~RunningServer();
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    void stop() { backend.stop(); }

    ZrHmiSrv::ErrorValue configure(const char* target, const char* address, bool enabled);
    void remove(const char* target);
    /// The result of the extension; 0 when it has gone.
    unsigned command(const char* name, ZrHmiSrv::Value input = {});
    /// The "Diagnostics" entry of a target system.
    ZrHmiSrv::Value diagnostics(const char* target);
    /// How many entries of the log are about a target system, of this name or of any.
    std::size_t logged(const char* target, const char* name = nullptr) const;

    /// What differs between the server, the extension's counters and the logger.
    Findings compare(const char* target, const char* netId);
    /// What still does when it has had its time.
    Findings differences(const char* target, const char* netId);

private:
    /// Watches that no alarm id is ever given to two alarms, which target and source tell apart.
    class IdWatch final : public hmi::IChangeSink {
    public:
        void post(hmi::Change change) noexcept override {
            if (change.event)
                note(*change.event);
        }
        void note(const hmi::EventRecord& event);
        Findings takeConflicts();

    private:
        Mutex mutex;
        std::map<int, std::string> owners GUARDED_BY(mutex);
        Findings conflicts GUARDED_BY(mutex);
    };

    const std::filesystem::path configurationFile;
    IdWatch changes;
    hmi::Metrics metrics;
    hmi::Backend backend;

public:
    hmi::EventBook& events = backend.events;
    hmi::ExtensionCalls& calls = backend.calls;
    hmi::LogBook& log = backend.log;
};

}  // namespace bridge_test
