/// What the server keeps of all that happens, over its own restarts and the runtimes' losses.
#ifndef _WIN32  // there is no history

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>

#include "endtoend/PlantScenario.h"

namespace json = boost::json;

namespace {

using testing::HasSubstr;

struct HistoryScenario : PlantScenario {
    HistoryScenario() : PlantScenario(argumentsOf()) {}

    static std::vector<std::string> argumentsOf() {
        static const TemporaryDirectory files;
        return {"--history", files.path("history.db").string(), "--history-locale", "de-DE",
                "--history-days", "36500"};
    }

    static json::array entries(const ServerFixture& from, const std::string& query = "limit=1000") {
        return from.get("/api/history?" + query).json().at("entries").as_array();
    }

    /// How often each change of each kind was kept of a target system.
    static std::map<std::string, int> counts(const ServerFixture& from, const std::string& target) {
        std::map<std::string, int> counts;
        for (const json::value& entry : entries(from, "limit=1000&target=" + target))
            ++counts[std::string(entry.at("change").as_string())];
        return counts;
    }

    static bool arrives(const ServerFixture& at, const std::string& query, std::size_t count) {
        return eventually([&] { return entries(at, query).size() == count; });
    }
};

TEST_F(HistoryScenario, KeepsALifeOverLossesAndARestart) {
    ASSERT_TRUE(arrives(server, "kind=message", 2)) << "the logs of both runtimes";
    act(filler, R"({"do": "raise", "class": "{00000001-0000-0000-0000-00000000ABCD}", "event": 1,
                    "source": {"name": "Tank"}, "arguments": [15], "alarm": "low"})");
    ASSERT_TRUE(arrives(server, "change=raised&text=stand+15&target=Filler&severity=3", 1));
    const json::value raised = entries(server, "change=raised").at(0);
    EXPECT_EQ(raised.at("text"), "Stand 15 niedrig");

    const std::string id = serialize(raised.at("event").at("id"));
    EXPECT_EQ(server.send("POST", "/api/events/" + id + "/confirm", {{"comment", "seen"}}).status,
              200U);
    ASSERT_TRUE(arrives(server, "change=confirmed&text=seen", 1));
    EXPECT_EQ(entries(server, "change=confirmed").at(0).at("by"), "127.0.0.1");
    EXPECT_THAT(serialize(entries(server, "kind=audit").at(0)), HasSubstr("/confirm"));
    for (int losses = 1; losses <= 3; ++losses) {
        act(filler, R"({"do": "drop"})");
        ASSERT_TRUE(eventually([&] {
            return server.get("/api/targets").json().at(0).at("import").at("number") == losses + 1;
        }));
    }
    ASSERT_TRUE(eventually([&] { return counts(server, "Filler")["gap"] >= 3; }));
    std::map<std::string, int> kept = counts(server, "Filler");
    EXPECT_EQ(kept["raised"], 1);
    EXPECT_EQ(kept["message"], 1);
    EXPECT_EQ(kept["confirmed"], 1);
    EXPECT_EQ(kept["cleared"], 0);

    const auto paged = [&] {
        json::array all;
        std::string after;
        do {
            const json::value page = server.get("/api/history?limit=3" + after).json();
            for (const json::value& entry : page.at("entries").as_array())
                all.push_back(entry);
            const json::value& next = page.at("next");
            after = next.is_null() ? "" : "&after=" + std::string(next.as_string());
        } while (!after.empty());
        return all;
    };
    EXPECT_TRUE(eventually([&] { return paged() == entries(server); }));
    const std::string table = server.get("/api/history.csv?target=Filler&kind=message").body;
    EXPECT_THAT(table, testing::StartsWith("seq,at,station,change,target,"));
    EXPECT_THAT(table, HasSubstr("Z,,message,Filler,"));
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 2);
    EXPECT_EQ(server.get("/api/history?after=next").status, 400U);
    EXPECT_EQ(server.get("/api/history?change=lost").status, 400U);
    EXPECT_EQ(server.get("/api/history/state").json().at("state"), "good");
    EXPECT_TRUE(server.hasMetric("hmi_history_lost_total 0"));
    ASSERT_EQ(server.stop(), 0);

    // The alarm ended while nobody looked; only the runtime's log tells when.
    json::value later = plant();
    json::value ended{{"class", "{00000001-0000-0000-0000-00000000ABCD}"},
                      {"event", 1},
                      {"timeRaised", raised.at("event").at("timeRaised")},
                      {"timeCleared", "2038-01-19T03:14:07.0000000Z"},
                      {"timeConfirmed", "2038-01-19T03:14:06.0000000Z"},
                      {"source", {{"name", "Tank"}}},
                      {"arguments", json::array{15}}};
    later.at("runtimes").at(filler).at("logged").as_array().push_back(std::move(ended));
    const ServerFixture again(EXTENSION_FILE, config(), later, argumentsOf());
    const std::string life = "occurrence=" + serialize(raised.at("seq"));
    ASSERT_TRUE(arrives(again, life + "&change=removed", 1));
    EXPECT_EQ(entries(again, life + "&change=cleared").at(0).at("at"),
              "2038-01-19T03:14:07.0000000Z");
    kept = counts(again, "Filler");
    EXPECT_EQ(kept["raised"], 1);
    EXPECT_EQ(kept["confirmed"], 1);
    EXPECT_EQ(kept["message"], 1);
    EXPECT_EQ(counts(again, "Packer")["message"], 1);
}

TEST_F(PlantScenario, WithoutAHistoryItSaysSo) {
    EXPECT_EQ(server.get("/api/history").status, 404U);
    EXPECT_THAT(server.get("/api/history/state").body, HasSubstr("--history"));
}

}  // namespace

#endif
