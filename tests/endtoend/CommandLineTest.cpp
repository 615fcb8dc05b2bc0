#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "endtoend/ServerFixture.h"

namespace {

using Arguments = std::vector<std::string>;

/// Runs the server with these arguments and expects it to refuse to start.
std::string refusal(const Arguments& arguments) {
    ChildProcess server(SERVER_FILE, arguments);
    EXPECT_EQ(server.wait(), 2);
    EXPECT_EQ(server.output(), "");
    return server.errors();
}

/// The arguments of a server that would start, if these were not wrong.
Arguments startWith(const std::string& config, const Arguments& further = {"--port", "0"},
                    const std::string& extension = TEST_EXTENSION_FILE) {
    Arguments arguments{"--extension", extension, "--config", config};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return arguments;
}

TEST(CommandLine, FaultsAreToldInOneLine) {
    const TemporaryDirectory files;
    auto file = [&, number = 0](const char* text) mutable {
        return files.write(std::to_string(++number), text);
    };
    const std::string good =
        file(R"({"TIMEOUT": "PT5S", "LIMIT_EVENT_COUNT": 1, "TARGET_SYSTEMS": {}})");
    const std::string cut = file("{\"TIMEOUT\":\n  \"PT5S\"");
    const std::string missing = files.path("missing.json").string();
    const auto startOn = [&](const std::string& plant) {
        return startWith(good, {"--port", "0", "--plant", plant}, EXTENSION_FILE);
    };
    const std::pair<Arguments, std::string> cases[] = {
        {{}, "--extension is missing"},
        {{"--extension", TEST_EXTENSION_FILE}, "--config is missing"},
        {{"--config"}, "--config"},
        {{"--confg", good}, "--confg"},
        {{"--config", good, "--config", good}, "--config"},
        {startWith(good, {"--port", "65536"}), "--port: Value 65536"},
        {startWith(good, {"--port", "8o"}), "--port: Value 8o"},
        {startWith(good, {"--log-level", "loud"}), "--log-level: loud"},
        {startWith(good, {"--address", "here"}), "--address: here"},
        {startWith(good, {"--allow-host", "http://hmi"}), "--allow-host: http://hmi is not"},
        {startWith(good, {"--allow-host", "hmi:8080"}), "--allow-host: hmi:8080 is not"},
        {startWith(good, {"--trusted-proxy", "proxy"}), "--trusted-proxy: proxy is not"},
        {startWith(good, {"--port", "0"}, missing), missing},
        {startWith(good, {"--port", "0"}, good), good},
        {startWith(missing), missing},
        {startWith(files.path("").string()), "cannot be read"},
        {startWith(cut), cut + ": line 2, column"},
        {startWith(file("[]")), ": line 1: not an object"},
        {startWith(file(R"({"TIMEOUT": "PT5S", "TARGET_SYSTEMS": {"a\n\u001b[2J\u009b": 1}})")),
         "TARGET_SYSTEMS.a  [2J : a name has"},
        {startOn(missing), missing},
        {startOn(cut), cut + ": line 2, column"},
        {startOn(file(R"({"runtimes": 5})")), ": runtimes"},
    };
    for (const auto& [arguments, expected] : cases) {
        const std::string told = refusal(arguments);
        EXPECT_THAT(told, testing::StartsWith("hmi-server: ")) << expected;
        EXPECT_THAT(told, testing::HasSubstr(expected));
        EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    }
}

TEST(CommandLine, RefusedInitDropsTheListenersBeforeTheExtensionGoes) {
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", R"({"TIMEOUT": "PT5S",
        "LIMIT_EVENT_COUNT": 1, "TARGET_SYSTEMS": {}, "REFUSE": 269})");
    EXPECT_THAT(refusal(startWith(config)),
                testing::EndsWith(
                    "destroyed without listeners\n"
                    "hmi-server: the extension refused to start with result 269 (as configured)\n"));
}

TEST(CommandLine, PortInUseIsToldAndAnotherServerGoesOn) {
    const ServerFixture first(TEST_EXTENSION_FILE, {{"TIMEOUT", "PT5S"}});
    const TemporaryDirectory files;
    const std::string config = files.write("config.json", "{}");
    const std::string port = std::to_string(first.port());
    EXPECT_THAT(refusal(startWith(config, {"--port", port})),
                testing::StartsWith("hmi-server: cannot listen on 127.0.0.1 port " + port));
    EXPECT_EQ(first.get("/api/config").status, 200U);
}

}  // namespace
