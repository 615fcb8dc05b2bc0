#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "robustness/EventImage.h"
#include "server/Backend.h"

namespace bridge_test {

/// hmi-server without its network: the extension is loaded and runs in it, with the targets
/// "Filler" and "Packer" of the simulation. Any thread may call it, also while it stops.
class RunningServer {
public:
    static constexpr unsigned eventLimit = 60;

    RunningServer();
    /// With other targets: "TARGET_SYSTEMS" as JSON.
    RunningServer(const std::string& targets, const char* timeout);
    ~RunningServer();
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    void stop() { backend.stop(); }

    void configure(const char* target, const char* address, bool enabled);
    void remove(const char* target);
    /// The result of the extension; 0 when it has gone.
    unsigned command(const char* name, ZrHmiSrv::Value input = {});
    /// The "Diagnostics" entry of a target system.
    ZrHmiSrv::Value diagnostics(const char* target);
    /// How many entries of the log are about a target system, of this name or of any.
    std::size_t logged(const char* target, const char* name = nullptr) const;

    /// What differs between the server, the extension's counters and the logger.
    Findings compare(const char* target, const char* netId);

private:
    class Discarded final : public hmi::IChangeSink {
        void post(hmi::Change) noexcept override {}
    };

    const std::filesystem::path configurationFile;
    Discarded changes;
    hmi::Metrics metrics;
    hmi::Backend backend;

public:
    hmi::EventBook& events = backend.events;
    hmi::ExtensionCalls& calls = backend.calls;
};

}  // namespace bridge_test
