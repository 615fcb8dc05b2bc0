#include <array>

#include <gmock/gmock.h>

#include "simulator/FnxSimulator.h"
#include "simulator/SimulatorFixture.h"

namespace {

class ControlTest : public SimulatorFixture {};

std::vector<int> localNetId() {
    const auto port = FnxPortOpen();
    FnxNetId netId{};
    EXPECT_EQ(FnxGetLocalAddress(port, &netId), 0);
    EXPECT_EQ(FnxPortClose(port), 0);
    EXPECT_NE(FnxGetLocalAddress(port, &netId), 0);
    EXPECT_NE(FnxPortClose(port), 0);
    return {std::begin(netId.b), std::end(netId.b)};
}

TEST_F(ControlTest, SetsTheLocalAddress) {
    EXPECT_THAT(localNetId(), testing::ElementsAre(5, 10, 20, 1, 1, 1));
    loadPlant("{}");
    EXPECT_THAT(localNetId(), testing::ElementsAre(5, 10, 20, 1, 1, 1));
    loadPlant(withQuotes("{'localNetId': '1.2.3.4.5.255'}"));
    EXPECT_THAT(localNetId(), testing::ElementsAre(1, 2, 3, 4, 5, 255));
}

TEST_F(ControlTest, KnowsOnlyItsRuntimes) {
    for (const char* netId : {"5.10.20.30.1.2", "5.10.20.30.1", "", "nonsense"}) {
        EXPECT_EQ(::status(netId).result, 404) << netId;
        EXPECT_EQ(::apply(netId, R"({"do": "resume"})").result, 404) << netId;
    }
    EXPECT_EQ(ZrSimulatorStatus(nullptr, nullptr), 404);
    EXPECT_EQ(ZrSimulatorLoadPlant(nullptr, nullptr), 400);
    EXPECT_EQ(ZrSimulatorApply(fillerNetId, nullptr, nullptr), 400);
}

TEST_F(ControlTest, ChangesNothingWhenAnyActionIsWrong) {
    const struct {
        const char* second;
        const char* error;
    } cases[] = {
        {"{'do': 'clear', 'alarm': 'B'}", "[1].alarm: never raised"},
        {"{'do': 'clear', 'alarm': 'A-2'}", "[1].alarm: never raised"},
        {"{'do': 'explode'}", "[1].do: not an action"},
        {"{'do': 'resume', 'after': 1}", "[1].after: only for the steps of a timeline"},
        {"7", "[1]: not an object"},
    };
    for (const auto& [second, error] : cases) {
        const auto answer = ::apply(
            fillerNetId, withQuotes("[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7,"
                                    " 'count': 2}, " +
                                    std::string(second) + "]"));
        EXPECT_EQ(answer.result, 400);
        EXPECT_EQ(answer.body.at("error").as_string(), error);
        EXPECT_EQ(status().at("logged").to_number<int>(), 0);
    }
    apply(
        "[{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 7, 'count': 2},"
        " {'do': 'clear', 'alarm': 'A-1'}]");
    EXPECT_EQ(status().at("alarms").at("A-1").at("active"), false);
}

TEST_F(ControlTest, PlaysTimelines) {
    loadPlant(
        withQuotes("{'runtimes': {'5.10.20.30.1.1': {'repeat': true,"
                   " 'eventClasses': {'CLASS': {'events': {'8': {'kind': 'alarm'}}}},"
                   " 'timeline': [{'do': 'raise', 'alarm': 'A', 'class': 'CLASS', 'event': 8},"
                   "              {'after': 0.002, 'do': 'clear', 'alarm': 'A'}]}}}"));
    Client client;
    client.advise();
    client.connect();
    const auto received = client.sink.waitFor(6);
    const auto first = received[0] == "raised 8" ? 0u : 1u;  // it may have begun before
    for (auto i = first; i + 1 < received.size(); i += 2) {
        EXPECT_EQ(received[i], "raised 8");
        EXPECT_EQ(received[i + 1], "cleared 8 removed");
    }
    ZrSimulatorShutdown();
    const auto last = client.sink.received().size();
    loadPlant("{}");
    EXPECT_EQ(client.sink.received().size(), last);
}

}  // namespace
