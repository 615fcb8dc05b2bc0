#include "endtoend/ServerFixture.h"

#include <stdexcept>

namespace json = boost::json;

namespace {

std::vector<std::string> argumentsOf(const TemporaryDirectory& files, const std::string& extension,
                                     const json::value& config, const json::value& plant,
                                     const std::vector<std::string>& further) {
    const std::string configFile = files.write("config.json", serialize(config));
    std::vector<std::string> arguments{"--extension", extension, "--config",
                                       configFile,    "--port",  "0"};
    if (!plant.is_null())
        arguments.insert(arguments.end(), {"--plant", files.write("plant.json", serialize(plant))});
    arguments.insert(arguments.end(), further.begin(), further.end());
    return arguments;
}

}  // namespace

ServerFixture::ServerFixture(const std::string& extension, const json::value& config,
                             const json::value& plant,
                             const std::vector<std::string>& furtherArguments)
    : process(SERVER_FILE, argumentsOf(files, extension, config, plant, furtherArguments)) {
    const auto line = [&] { return process.output(); };
    eventually([&] { return line().ends_with('\n') || !process.isRunning(); });
    const std::string announcement = line();
    const std::string address = "://127.0.0.1:";
    const auto at = announcement.find(address);
    if (!announcement.starts_with("listening on http") || at == std::string::npos)
        throw std::runtime_error("the server does not start: " + errors());
    portNumber = static_cast<std::uint16_t>(std::stoi(announcement.substr(at + address.size())));
}

HttpAnswer ServerFixture::send(const char* method, const std::string& target,
                               const json::value& body) const {
    return sendRequest(portNumber, method, target, body.is_null() ? "" : serialize(body));
}

bool ServerFixture::hasMetric(const std::string& line) const {
    return get("/metrics").body.find("\n" + line + "\n") != std::string::npos;
}

json::array ServerFixture::events(const std::string& query) const {
    return get("/api/events?" + query).json().at("events").as_array();
}

int ServerFixture::stop() {
    process.interrupt();
    return process.wait();
}
