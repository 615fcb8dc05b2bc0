/// The import as a target system has it: around a simulated runtime.
#include <atomic>
#include <thread>

#include <gmock/gmock.h>

#include "support/Simulation.h"
#include "target/TargetSystemPlatformSpecific.h"
#include "tests/events/RecordingLogging.h"

namespace {

using namespace bridge_test;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;
using ZrHmiEventLogger::ImportResultPtr;
using ZrHmiEventLogger::TargetSystem;

struct ImportOnConnect : testing::Test {
    std::shared_ptr<TargetSystem> makeTarget() {
        return ZrHmiEventLogger::TargetSystemPlatformSpecific<TargetSystem>::make(
            ZrHmiEventLogger::TargetSystemSettings{
                "Filler", fillerNetId, true, ZrHmiSrv::Timespan::from_milliseconds(20'000), 10},
            "Domain", logging, stopping, ids);
    }
    bool connect() {
        ImportResultPtr result;
        return target->Connect(result);
    }
    bool check() {
        ImportResultPtr result;
        return target->CheckConnection(result);
    }
    std::int64_t calls(const char* operation) {
        const auto counted = simulation.status().at("calls").as_object();
        const auto* count = counted.if_contains(operation);
        return count ? count->to_number<std::int64_t>() : 0;
    }

    Simulation simulation{std::string(R"([{"event": 3, "timeRaised": "2020-01-01T00:00:00Z",)") +
                          R"("class": ")" + eventClass + R"("}])"};
    RecordingLogging logging;
    std::atomic<bool> stopping = false;
    std::atomic<std::int32_t> ids = 1;
    std::shared_ptr<TargetSystem> target = makeTarget();
};

TEST_F(ImportOnConnect, AFailedImportKeepsTheMessagesAndTriesAgain) {
    simulation.act(R"({"do": "hold"})");  // the import alone brings the alarm
    simulation.raise("hot");
    ASSERT_TRUE(connect());
    target->RequestReconnect();
    logging.take();
    simulation.act(R"({"do": "fail", "call": "GetActiveAlarms", "hresult": "0x80070005"})");
    EXPECT_FALSE(connect());
    EXPECT_THAT(logging.take(), ElementsAre(StartsWith("TARGET_SYSTEM_CONNECTED Filler"),
                                            StartsWith("error Filler ")));
    EXPECT_EQ(target->statistics().cachedMessagesCount, 1U);
    EXPECT_EQ(target->statistics().cachedAlarmsCount, 0U);
    EXPECT_FALSE(target->GetConnectionState().connected);
    EXPECT_EQ(calls("Disconnect"), 2);

    EXPECT_TRUE(check()) << "connects and imports again";
    EXPECT_EQ(target->statistics().activeAlarmsCount, 1U);
    EXPECT_TRUE(target->GetConnectionState().connected);
    target.reset();
    EXPECT_EQ(simulation.liveObjects(), 0);
}

TEST_F(ImportOnConnect, ADatabaseChangeMeanwhileReconnectsAfterwards) {
    simulation.act(R"({"do": "pause", "call": "GetActiveAlarms"})");
    std::thread importing([this] { EXPECT_TRUE(connect()); });
    while (calls("GetActiveAlarms") == 0)
        std::this_thread::yield();
    VARIANTARG reason;
    VariantInit(&reason);
    reason.vt = VT_I4;
    reason.lVal = ZrEventLoggerFnxProxyLib::databaseChangeLoggedEventsCleared;
    DISPPARAMS arguments{&reason, nullptr, 1, 0};
    EXPECT_EQ(target->Invoke(10, IID_IUnknown, 0, 1, &arguments, nullptr, nullptr, nullptr), S_OK);
    simulation.act(R"({"do": "resume"})");
    importing.join();
    EXPECT_THAT(logging.take(), Contains("DATABASE_CHANGED Filler ClearLoggedEvents"));
    EXPECT_EQ(calls("Disconnect"), 1);
    EXPECT_TRUE(check());
    EXPECT_EQ(calls("GetActiveAlarms"), 2);
    EXPECT_THAT(logging.take(), testing::Not(Contains(StartsWith("DATABASE_CHANGED"))));
}

}  // namespace
