#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace {

/// Runs the server with these arguments and expects it to refuse to start.
std::string refusal(const std::vector<std::string>& arguments) {
    ChildProcess server(SERVER_FILE, arguments);
    EXPECT_EQ(server.wait(), 2);
    EXPECT_EQ(server.output(), "");
    return server.errors();
}

std::vector<std::string> withExtension(const char* extension, const std::string& config,
                                       const std::vector<std::string>& further) {
    std::vector<std::string> arguments{"--extension", extension, "--config", config};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return arguments;
}

TEST(CommandLine, FaultsAreToldInOneLine) {
    const TemporaryDirectory files;
    const std::string missing = files.path("missing.json").string();
    const std::string good = files.write("good.json", R"({"TIMEOUT": "PT5S"})");
    const std::string cut = files.write("cut.json", "{\"TIMEOUT\":\n  \"PT5S\"");
    const std::string plant = files.write("plant.json", R"({"runtimes": 5})");
    struct Case {
        std::vector<std::string> arguments;
        std::string told;
    };
    std::vector<Case> cases{
        {{}, "--extension is missing"},
        {{"--extension", TEST_EXTENSION_FILE}, "--config is missing"},
        {{"--config", good}, "--extension is missing"},
        {{"--config"}, "--config: a value is missing"},
        {{"--confg", good}, "unknown argument --confg"},
        {{"--config", good, "--config", good}, "--config is given twice"},
        {withExtension(missing.c_str(), good, {"--port", "0"}), missing},
        {withExtension(good.c_str(), good, {"--port", "0"}), good},
        {withExtension(TEST_EXTENSION_FILE, missing, {}), missing},
        {withExtension(TEST_EXTENSION_FILE, files.path("").string(), {}), "cannot be read"},
        {withExtension(TEST_EXTENSION_FILE, cut, {}), cut + ": line 2, column"},
        {withExtension(EXTENSION_FILE, good, {"--port", "0", "--plant", missing}), missing},
        {withExtension(EXTENSION_FILE, good, {"--port", "0", "--plant", cut}), cut + ": line 2,"},
        {withExtension(EXTENSION_FILE, good, {"--port", "0", "--plant", plant}),
         plant + ": runtimes"}};
    for (const auto& [option, value] : {std::pair("--port", "65536"), std::pair("--port", "8o"),
                                        std::pair("--log-level", "loud"),
                                        std::pair("--address", "here")})
        cases.push_back({withExtension(TEST_EXTENSION_FILE, good, {option, value}),
                         std::string(option) + ": " + value});
    for (const auto& [config, told] :
         {std::pair("[]", "wrong.json: not an object"),
          std::pair(R"({"LIMIT_EVENT_COUNT": "many"})", "LIMIT_EVENT_COUNT: not a number"),
          std::pair(R"({"TARGET_SYSTEMS": {"A": 5}})", "TARGET_SYSTEMS.A: not an object"),
          std::pair(R"({"TARGET_SYSTEMS": {"A": {"ADDRESS": 5}}})", "A.ADDRESS: not a string")}) {
        const std::string file = files.write("wrong.json", config);
        EXPECT_THAT(refusal(withExtension(TEST_EXTENSION_FILE, file, {})), testing::HasSubstr(told));
    }
    for (const auto& [arguments, expected] : cases) {
        const std::string told = refusal(arguments);
        EXPECT_THAT(told, testing::StartsWith("hmi-server: ")) << expected;
        EXPECT_THAT(told, testing::HasSubstr(expected));
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    }
}

TEST(CommandLine, RefusedInitDropsTheListenersBeforeTheExtensionGoes) {
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", R"({"REFUSE": 269})");
    EXPECT_EQ(refusal(withExtension(TEST_EXTENSION_FILE, config, {"--port", "0"})),
              "destroyed without listeners\n"
              "hmi-server: the extension refused to start with result 269 (as configured)\n");
}

TEST(CommandLine, PortInUseIsToldAndAnotherServerGoesOn) {
    const ServerFixture first(TEST_EXTENSION_FILE, {{"TIMEOUT", "PT5S"}});
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", "{}");
    const std::string port = std::to_string(first.port());
    EXPECT_THAT(refusal(withExtension(TEST_EXTENSION_FILE, config, {"--port", port})),
                testing::StartsWith("hmi-server: cannot listen on 127.0.0.1 port " + port));
    EXPECT_EQ(first.get("/api/config").status, 200U);
}

}  // namespace
