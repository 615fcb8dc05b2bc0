#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include "endtoend/ServerFixture.h"

inline const std::string filler = "5.10.20.30.1.1";
inline const std::string packer = "5.10.20.31.1.1";

/// The real extension, with two runtimes and one that does not exist.
class PlantScenario : public testing::Test {
protected:
    explicit PlantScenario(const std::vector<std::string>& furtherArguments = {})
        : server(EXTENSION_FILE, config(), plant(), furtherArguments) {}

    static boost::json::value config() {
        return boost::json::parse(R"({
            "TIMEOUT": "PT2S", "LIMIT_EVENT_COUNT": 100, "PRELOAD_TRANSLATIONS": false,
            "TARGET_SYSTEMS": {
                "Filler": {"ADDRESS": "5.10.20.30.1.1", "ENABLED": true},
                "Packer": {"ADDRESS": "5.10.20.31.1.1", "ENABLED": true},
                "Nowhere": {"ADDRESS": "5.10.20.99.1.1", "ENABLED": true}}})");
    }

    static boost::json::value plant() {
        const boost::json::value runtime = boost::json::parse(R"({
            "eventClasses": {"{00000001-0000-0000-0000-00000000ABCD}": {
                "name": {"1033": "Machine"},
                "events": {
                    "1": {"kind": "alarm", "severity": 3, "confirm": true,
                          "text": {"1033": "Level {0} low", "1031": "Stand {0} niedrig"},
                          "causeRemedy": [{"id": "1", "cause": {"1033": "Leak"},
                                           "remedy": {"1033": "Seal"}}]},
                    "2": {"kind": "message", "text": {"1033": "Batch {0}"}}}}},
            "sources": {"Tank": {"1031": "Behälter"}},
            "logged": [{"class": "{00000001-0000-0000-0000-00000000ABCD}", "event": 2,
                        "timeRaised": "2024-05-01T06:00:00.1234567Z", "arguments": ["F1"]}]})");
        return {{"localNetId", "5.10.20.1.1.1"},
                {"runtimes", {{filler, runtime}, {packer, runtime}}}};
    }

    void act(const std::string& netId, const std::string& action) {
        const HttpAnswer answer = server.send("POST", "/sim/" + netId, boost::json::parse(action));
        ASSERT_EQ(answer.status, 200U) << answer.body;
    }

    void raise(const std::string& netId, const std::string& alarm) {
        act(netId, R"({"do": "raise", "class": "{00000001-0000-0000-0000-00000000ABCD}",
                       "event": 1, "source": {"name": "Tank"}, "arguments": [15],
                       "timeRaised": "2024-05-01T07:00:00.5Z",
                       "alarm": ")" +
                       alarm + "\"}");
    }

    boost::json::value simulated(const std::string& netId) {
        return server.get("/sim/" + netId).json();
    }

    /// The event of the stream's next line of this type; what passes by is of no event's content.
    boost::json::value next(StreamClient& stream, const char* type) {
        static const std::set<std::string_view> passing{"log", "confirmation", "target", "gap",
                                                        "alive"};
        while (const auto line = stream.next()) {
            if (line->at("type") == type)
                return line->at("event");
            EXPECT_TRUE(passing.contains(line->at("type").as_string())) << serialize(*line);
        }
        ADD_FAILURE() << "no line " << type;
        return {};
    }

    std::size_t countOf(const char* query) { return server.events(query).size(); }

    bool reaches(const char* query, std::size_t count) {
        return eventually([&] { return countOf(query) == count; });
    }

    bool isLogged(const std::string& name) {
        return server.hasMetric("hmi_log_messages_total{name=\"" + name +
                                "\",target=\"Filler\"} 1");
    }

    bool isPackerIn(const std::string& state) {
        return server.hasMetric("hmi_target_state{target=\"Packer\",state=\"" + state + "\"} 1");
    }

    ServerFixture server;
};
