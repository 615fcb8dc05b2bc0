#include "endtoend/ServerFixture.h"

#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <boost/json/serialize.hpp>

namespace fs = std::filesystem;
namespace json = boost::json;

TemporaryDirectory::TemporaryDirectory() {
    std::ostringstream name;
    name << "hmi-server-test-" << std::hex << std::random_device()() << std::random_device()();
    directory = fs::temp_directory_path() / name.str();
    fs::create_directory(directory);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::remove_all(directory, ignored);
}

std::string TemporaryDirectory::write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name).string();
}

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

ServerFixture::ServerFixture(const std::string& extension, const json::value& config,
                             const json::value& plant) {
    std::vector<std::string> arguments{"--extension", extension,
                                       "--config",    files.write("config.json", serialize(config)),
                                       "--port",      "0"};
    if (!plant.is_null()) {
        arguments.push_back("--plant");
        arguments.push_back(files.write("plant.json", serialize(plant)));
    }
    child = std::make_unique<ChildProcess>(SERVER_FILE, arguments);
    const std::string announcement = "listening on http://127.0.0.1:";
    if (!child->waitForOutput("\n", std::chrono::seconds(60)) ||
        !child->output().starts_with(announcement))
        throw std::runtime_error("the server does not start: " + child->errors());
    portNumber = static_cast<std::uint16_t>(std::stoi(child->output().substr(announcement.size())));
}

HttpAnswer ServerFixture::get(const std::string& target) const {
    return sendRequest(portNumber, "GET", target);
}

HttpAnswer ServerFixture::post(const std::string& target, const json::value& body) const {
    return sendRequest(portNumber, "POST", target, serialize(body));
}

HttpAnswer ServerFixture::put(const std::string& target, const json::value& body) const {
    return sendRequest(portNumber, "PUT", target, serialize(body));
}

HttpAnswer ServerFixture::erase(const std::string& target) const {
    return sendRequest(portNumber, "DELETE", target);
}

json::array ServerFixture::events(const std::string& query) const {
    return get("/api/events?" + query).json().at("events").as_array();
}

std::string ServerFixture::configFile() const {
    std::ifstream stream(files.path("config.json"), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

int ServerFixture::stop() {
    child->interrupt();
    return child->wait(std::chrono::seconds(30));
}
