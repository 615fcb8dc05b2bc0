#pragma once

#include <memory>
#include <vector>

#include "support/RecordingHost.h"

extern "C" int ext_interface(ZrHmiSrv::IZrHmiSrvExtHost* host, ZrHmiSrv::IZrHmiSrvExt** extension,
                             double* version);

namespace bridge_test {

/// The extension as a host has it: created, initialized, asked and shut down through its
/// interfaces only.
class LoadedExtension {
public:
    explicit LoadedExtension(RecordingHost& host);
    ~LoadedExtension() { shutdown(); }

    ZrHmiSrv::ResultPair init() { return extension->init(context); }
    /// Nothing when its listener is gone.
    ZrHmiSrv::ResultPair shutdown();
    ZrHmiSrv::ResultPair confirm(const ZrHmiSrv::Alarm& alarm);
    std::vector<ZrHmiSrv::Command> command(std::vector<ZrHmiSrv::Command> commands);
    ZrHmiSrv::Command command(const char* name, ZrHmiSrv::Value input = {});
    /// An entry of a target system's "Diagnostics".
    std::string diagnostics(const char* target, const char* entry);

    template <class Listener>
    Listener* listener(ZrHmiSrv::ListenerType type) {
        ZrHmiSrv::IZrHmiSrvListener* found = nullptr;
        host.look([&] { found = host.listeners[type]; });
        return dynamic_cast<Listener*>(found);
    }

    const ZrHmiSrv::Context context{"TestDomain"};
    std::unique_ptr<ZrHmiSrv::IZrHmiSrvExt> extension;

private:
    RecordingHost& host;
};

}  // namespace bridge_test
