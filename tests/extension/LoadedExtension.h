#pragma once

#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "support/RecordingHost.h"

extern "C" int ext_interface(ZrHmiSrv::IZrHmiSrvExtHost* host, ZrHmiSrv::IZrHmiSrvExt** extension,
                             double* version);

namespace bridge_test {

/// The extension as a host has it: created, initialized, asked and shut down through its
/// interfaces only.
class LoadedExtension {
public:
    explicit LoadedExtension(RecordingHost& host) : host(host) {
        ZrHmiSrv::IZrHmiSrvExt* created = nullptr;
        double version = 0;
        ext_interface(&host, &created, &version);
        EXPECT_EQ(version, 22.0);
        extension.reset(created);
    }
    ~LoadedExtension() { shutdown(); }

    ZrHmiSrv::ResultPair init() { return extension->init(context); }
    /// Nothing when its listener is gone.
    ZrHmiSrv::ResultPair shutdown() {
        auto* found = listener<ZrHmiSrv::IZrHmiSrvShutdownListener>();
        return found ? found->shutdown(context) : ZrHmiSrv::ResultPair();
    }
    ZrHmiSrv::ResultPair confirm(const ZrHmiSrv::Alarm& alarm) {
        return listener<ZrHmiSrv::IZrHmiSrvAlarmProviderListener>()->confirm_alarm(context, alarm);
    }
    ZrHmiSrv::Command command(const char* name, ZrHmiSrv::Value input = {}) {
        ZrHmiSrv::CommandGroup group({ZrHmiSrv::Command(name, name, std::move(input))});
        listener<ZrHmiSrv::IZrHmiSrvRequestListener>()->handle(context, group);
        return *group.begin_vector();
    }
    /// An entry of a target system's "Diagnostics".
    std::string diagnostics(const char* target, const char* entry) {
        const ZrHmiSrv::Value targets =
            command("Diagnostics").read_value().get_map().get("TARGET_SYSTEMS");
        return targets.get_map().get(target).get_map().get(entry).get_string();
    }
    template <class Listener>
    Listener* listener() {
        Listener* found = nullptr;
        host.look([&] {
            for (const auto& [type, registered] : host.listeners)
                if (auto* fitting = dynamic_cast<Listener*>(registered))
                    found = fitting;
        });
        return found;
    }

    const ZrHmiSrv::Context context{"TestDomain"};
    std::unique_ptr<ZrHmiSrv::IZrHmiSrvExt> extension;

private:
    RecordingHost& host;
};

}  // namespace bridge_test
