#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/IZrHmiSrvExtHost.h"
#include "support/RecordingHost.h"

extern "C" int ext_interface(ZrHmiSrv::IZrHmiSrvExtHost* host, ZrHmiSrv::IZrHmiSrvExt** extension,
                             double* version);

namespace bridge_test {

/// The extension as a host has it: created, initialized, asked and shut down through its
/// interfaces only.
class LoadedExtension {
public:
    explicit LoadedExtension(RecordingHost& host);
    ~LoadedExtension();

    ZrHmiSrv::ResultPair init();
    ZrHmiSrv::ResultPair shutdown();
    void destroy() { extension.reset(); }

    /// Asks the alarm provider for the events that exist.
    void refresh();
    ZrHmiSrv::ResultPair confirm(const ZrHmiSrv::Alarm& alarm);
    std::vector<ZrHmiSrv::Command> command(std::vector<ZrHmiSrv::Command> commands);
    ZrHmiSrv::Command command(const char* name, ZrHmiSrv::Value input = {});
    /// The "Diagnostics" entry of a target system.
    ZrHmiSrv::Value diagnostics(const char* target);
    ZrHmiSrv::ResultPair setConfiguration(const char* path);
    ZrHmiSrv::ResultPair deleteConfiguration(const char* path);

    template <class Listener>
    Listener& listener(ZrHmiSrv::ListenerType type) {
        ZrHmiSrv::IZrHmiSrvListener* found = nullptr;
        host.look([&] { found = host.listeners.at(type); });
        return dynamic_cast<Listener&>(*found);
    }

    const ZrHmiSrv::Context context{"TestDomain"};

private:
    RecordingHost& host;
    std::unique_ptr<ZrHmiSrv::IZrHmiSrvExt> extension;
};

}  // namespace bridge_test
