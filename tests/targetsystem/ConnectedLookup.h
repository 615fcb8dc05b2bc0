#pragma once

#include <atomic>
#include <string>

#include <gtest/gtest.h>

#include "events/EventContext.h"
#include "support/Simulation.h"
#include "targetsystem/LoggerConnection.h"
#include "targetsystem/TextLookup.h"
#include "tests/events/RecordingLogging.h"

namespace bridge_test {

/// The texts of a simulated runtime, "Filler", to which they are connected.
class ConnectedLookup {
public:
    ConnectedLookup() {
        EXPECT_EQ(connection.create(), S_OK);
        connection.setTimeout(60'000);
        connect(false);
    }
    void connect(bool preloadTranslations) {
        connection.get()->Disconnect();
        connection.connect(fillerNetId, preloadTranslations, context);
        connection.setState({true, S_OK});
    }

    Simulation simulation;
    RecordingLogging logging;
    std::atomic<bool> disabled = false;
    std::atomic<bool> abandoned = false;
    std::atomic<std::int32_t> hostIds = 1;
    ZrHmiEventLogger::EventContext context{"Filler", "TestDomain", logging,   hostIds,
                                           100,      {},           abandoned, abandoned};
    ZrHmiEventLogger::LoggerConnection connection;
    ZrHmiEventLogger::TextLookup lookup{context, connection, disabled};
};

inline ZrHmiSrv::Binary bytes(const std::string& text) {
    return ZrHmiSrv::Binary(std::as_bytes(std::span(text)));
}

}  // namespace bridge_test
