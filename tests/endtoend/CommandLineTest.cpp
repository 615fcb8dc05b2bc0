#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace {

/// Runs the server with these arguments and expects it to refuse to start.
std::string refusal(const std::vector<std::string>& arguments) {
    ChildProcess server(SERVER_FILE, arguments);
    EXPECT_EQ(server.wait(std::chrono::seconds(60)), 2);
    EXPECT_EQ(server.output(), "");
    return server.errors();
}

TEST(CommandLine, FaultsAreToldInOneLine) {
    const TemporaryDirectory files;
    const std::string good = files.write("good.json", R"({"TIMEOUT": "PT5S"})");
    const std::string cut = files.write("cut.json", "{\"TIMEOUT\":\n  \"PT5S\"");
    const std::string list = files.write("list.json", "[]");
    const std::string limit = files.write("limit.json", R"({"LIMIT_EVENT_COUNT": "many"})");
    const std::string targets = files.write("targets.json", R"({"TARGET_SYSTEMS": []})");
    const std::string entry = files.write("entry.json", R"({"TARGET_SYSTEMS": {"A": 5}})");
    const std::string address =
        files.write("address.json", R"({"TARGET_SYSTEMS": {"A": {"ADDRESS": 5}}})");
    const std::string plant = files.write("plant.json", R"({"runtimes": 5})");
    const std::string missing = files.path("missing.json").string();
    const std::string extension = TEST_EXTENSION_FILE;

    const struct {
        std::vector<std::string> arguments;
        std::string told;
    } cases[] = {
        {{}, "--extension is missing"},
        {{"--extension", extension}, "--config is missing"},
        {{"--config", good}, "--extension is missing"},
        {{"--config"}, "--config: a value is missing"},
        {{"--confg", good}, "unknown argument --confg"},
        {{"--config", good, "--config", good}, "--config is given twice"},
        {{"--extension", extension, "--config", good, "--port", "65536"}, "--port: 65536"},
        {{"--extension", extension, "--config", good, "--port", "8o"}, "--port: 8o"},
        {{"--extension", extension, "--config", good, "--log-level", "loud"}, "--log-level: loud"},
        {{"--extension", extension, "--config", good, "--address", "here"}, "--address: here"},
        {{"--extension", missing, "--config", good, "--port", "0"}, missing},
        {{"--extension", good, "--config", good, "--port", "0"}, good},
        {{"--extension", extension, "--config", missing}, missing},
        {{"--extension", extension, "--config", files.path("").string()}, "cannot be read"},
        {{"--extension", extension, "--config", cut}, cut + ": line 2, column"},
        {{"--extension", extension, "--config", list}, list + ": not an object"},
        {{"--extension", extension, "--config", limit}, "LIMIT_EVENT_COUNT: not a number"},
        {{"--extension", extension, "--config", targets}, "TARGET_SYSTEMS: not an object"},
        {{"--extension", extension, "--config", entry}, "TARGET_SYSTEMS.A: not an object"},
        {{"--extension", extension, "--config", address}, "TARGET_SYSTEMS.A.ADDRESS: not a string"},
        {{"--extension", EXTENSION_FILE, "--config", good, "--port", "0", "--plant", missing},
         missing},
        {{"--extension", EXTENSION_FILE, "--config", good, "--port", "0", "--plant", cut},
         cut + ": line 2, column"},
        {{"--extension", EXTENSION_FILE, "--config", good, "--port", "0", "--plant", plant},
         plant + ": runtimes"},
    };
    for (const auto& item : cases) {
        const std::string told = refusal(item.arguments);
        EXPECT_THAT(told, testing::StartsWith("hmi-server: ")) << item.told;
        EXPECT_THAT(told, testing::HasSubstr(item.told));
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    }
}

TEST(CommandLine, RefusedInitDropsTheListenersBeforeTheExtensionGoes) {
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", R"({"REFUSE": 269})");
    EXPECT_EQ(refusal({"--extension", TEST_EXTENSION_FILE, "--config", config, "--port", "0"}),
              "destroyed with 0 listeners\n"
              "hmi-server: the extension refused to start with result 269 (as configured)\n");
}

TEST(CommandLine, PortInUseIsToldAndAnotherServerGoesOn) {
    const ServerFixture first(TEST_EXTENSION_FILE, {{"TIMEOUT", "PT5S"}});
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", "{}");
    const std::string port = std::to_string(first.port());
    EXPECT_THAT(refusal({"--extension", TEST_EXTENSION_FILE, "--config", config, "--port", port}),
                testing::StartsWith("hmi-server: cannot listen on 127.0.0.1 port " + port));
    EXPECT_EQ(first.get("/api/config").status, 200U);
}

}  // namespace
