#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "events/EventContext.h"
#include "support/Simulation.h"
#include "target/LoggerConnection.h"
#include "target/TextLookup.h"
#include "target/proxy/Guid.h"

namespace bridge_test {

/// Counts what is reported; everything else that a target system tells is no matter here.
class ReportCounter final : public ZrHmiEventLogger::ILoggingFunctions {
public:
    void logMessage(ZrHmiSrv::Message) override {}
    void reportCommunicationError(const ZrHmiSrv::Text& text) override {
        std::lock_guard lock(mutex);
        texts.emplace_back(text.view());
    }
    void reportCommunicationError(const ZrHmiSrv::Text& text, const std::exception&) override {
        reportCommunicationError(text);
    }
    void sendMessage(ZrHmiSrv::Message) override {}
    void raiseAlarm(ZrHmiSrv::Alarm) override {}
    void updateAlarm(ZrHmiSrv::Alarm, bool) override {}
    void forgetEvent(ZrHmiSrv::Event) override {}
    bool preloadTranslations() override { return preload; }

    std::vector<std::string> takeReports() {
        std::lock_guard lock(mutex);
        return std::exchange(texts, {});
    }

    std::atomic<bool> preload = false;

private:
    std::mutex mutex;
    std::vector<std::string> texts;
};

/// The texts of a simulated runtime, "Filler", to which they are connected.
class ConnectedLookup {
public:
    ConnectedLookup() {
        EXPECT_EQ(connection.create(), S_OK);
        connection.setTimeout(60'000);
        connect();
    }

    void connect() { EXPECT_TRUE(connection.connect(fillerNetId, false, abandoned)); }
    std::int64_t calls(const char* operation) {
        const auto counters = simulation.status().at("calls").as_object();
        const auto* count = counters.if_contains(operation);
        return count ? count->to_number<std::int64_t>() : 0;
    }
    void fail(const std::string& operation) {
        simulation.act(R"({"do": "fail", "hresult": "0x80004005", "times": 1, "call": ")" +
                       operation + "\"}");
    }

    Simulation simulation;
    ReportCounter logging;
    std::atomic<bool> disabled = false;

private:
    std::atomic<bool> abandoned = false;
    std::atomic<std::int32_t> hostIds = 1;
    ZrHmiEventLogger::EventContext context{"Filler", "TestDomain", logging, hostIds, 100};

public:
    ZrHmiEventLogger::LoggerConnection connection;
    ZrHmiEventLogger::TextLookup lookup{context, connection, disabled};
};

inline ZrHmiSrv::Binary bytes(const std::string& text) {
    return ZrHmiSrv::Binary(std::as_bytes(std::span(text)));
}

}  // namespace bridge_test
