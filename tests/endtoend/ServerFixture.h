#pragma once

#include <string>
#include <vector>

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include "endtoend/ChildProcess.h"
#include "endtoend/HttpClient.h"

/// A server process that listens on a free port.
class ServerFixture {
public:
    /// Throws unless it starts to listen.
    ServerFixture(const std::string& extension, const boost::json::value& config,
                  const boost::json::value& plant = {},
                  const std::vector<std::string>& furtherArguments = {});

    std::uint16_t port() const { return portNumber; }
    HttpAnswer get(const std::string& target) const { return send("GET", target); }
    /// Null is no body.
    HttpAnswer send(const char* method, const std::string& target,
                    const boost::json::value& body = {}) const;
    /// The events that a query selects, newest first.
    boost::json::array events(const std::string& query = "limit=100000") const;
    bool hasMetric(const std::string& line) const;
    std::string configFile() const { return readFile(files.path("config.json")); }
    /// What the program told on standard error.
    std::string errors() const { return process.errors(); }
    void signal(int number) { process.signal(number); }
    /// The exit code of an orderly stop.
    int stop();

private:
    TemporaryDirectory files;
    ChildProcess process;
    std::uint16_t portNumber = 0;
};
