#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

/// The whole hmi-server in this process, with the extension and one simulated runtime, on a free
/// port of the loopback address. One at a time. Throws std::runtime_error when anything fails.
class ServerInProcess {
public:
    /// `eventLimit`: how many events the extension keeps.
    explicit ServerInProcess(unsigned eventLimit);
    ~ServerInProcess();
    ServerInProcess(const ServerInProcess&) = delete;
    ServerInProcess& operator=(const ServerInProcess&) = delete;

    std::uint16_t port() const;
    /// Tells the runtime what to do, without a request.
    void act(const std::string& actions);
    /// The body of the answer, as it came. The connection stays.
    std::string get(const std::string& target);
    std::string post(const std::string& target, const std::string& body);
    /// How many events the list has.
    std::size_t total();
    /// Waits until the list has so many.
    void awaitTotal(std::size_t count);
    /// The value of a sample of /metrics by its name and labels; 0 when there is none.
    double metric(std::string_view sample);
    /// The next line of the stream that holds this text, which was followed from the first call of
    /// `follow` on.
    std::string awaitLine(std::string_view text);
    void follow();

private:
    class Files;
    struct Client;

    std::string exchange(const char* method, const std::string& target, const std::string& body);

    std::unique_ptr<Files> files;
    struct Server;
    std::unique_ptr<Server> server;
    std::unique_ptr<Client> client;
};

/// The action that raises alarms called "A", or sends messages, with ten parameters each.
std::string raiseAction(std::size_t count, std::string_view name = "A");
std::string messageAction(std::size_t count);
