#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <boost/json/value.hpp>

#include "endtoend/ChildProcess.h"
#include "endtoend/HttpClient.h"

/// A directory for one test, removed at its end.
class TemporaryDirectory {
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    std::filesystem::path path(const std::string& name) const { return directory / name; }
    /// Answers the file's path.
    std::string write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path directory;
};

/// Polls until the condition holds. False when that takes longer than half a minute.
bool eventually(const std::function<bool()>& condition);

/// A server process that listens on a free port.
class ServerFixture {
public:
    /// Throws unless it starts to listen.
    ServerFixture(const std::string& extension, const boost::json::value& config,
                  const boost::json::value& plant = {});

    HttpAnswer get(const std::string& target) const;
    HttpAnswer post(const std::string& target, const boost::json::value& body) const;
    HttpAnswer put(const std::string& target, const boost::json::value& body) const;
    HttpAnswer erase(const std::string& target) const;
    /// The events that a query selects, newest first.
    boost::json::array events(const std::string& query = "limit=100000") const;

    std::uint16_t port() const { return portNumber; }
    std::string configFile() const;
    ChildProcess& process() { return *child; }
    /// The exit code of an orderly stop.
    int stop();

private:
    TemporaryDirectory files;
    std::unique_ptr<ChildProcess> child;
    std::uint16_t portNumber = 0;
};
