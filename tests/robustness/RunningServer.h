#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "robustness/EventImage.h"
#include "server/metrics/Metrics.h"
#include "server/config/ConfigurationStore.h"
#include "server/events/EventBook.h"
#include "server/events/LogBook.h"
#include "server/extension/EventRefresher.h"
#include "server/extension/ExtensionCalls.h"
#include "server/extension/ExtensionLibrary.h"
#include "server/extension/Host.h"
#include "server/extension/ListenerRegistry.h"

namespace bridge_test {

/// hmi-server without its network: the extension is loaded and runs in it, with the targets
/// "Filler" and "Packer" of the simulation. Any thread may call it, also while it stops.
class RunningServer {
public:
    static constexpr unsigned eventLimit = 60;

    RunningServer();
    ~RunningServer();
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    void stop();

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
    hmi::ListenerRegistry listeners;
    std::unique_ptr<hmi::ExtensionLibrary> extension;

public:
    hmi::ConfigurationStore configuration;
    hmi::EventBook events{changes};
    hmi::LogBook log{changes};
    hmi::ExtensionCalls calls;

private:
    hmi::EventRefresher refresher{events, calls, metrics};
    hmi::Host host;
};

}  // namespace bridge_test
