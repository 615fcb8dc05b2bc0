#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <boost/process/child.hpp>

/// Polls until the condition holds. False when that takes longer than a minute.
bool eventually(const std::function<bool()>& condition);

std::string readFile(const std::filesystem::path& path);

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

/// A program that runs beside the test and writes into files of its own. Killed at the end.
class ChildProcess {
public:
    /// Throws std::system_error when it cannot be started.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);

    bool isRunning() { return child.running(); }
    std::string output() const { return readFile(files.path("output")); }
    std::string errors() const { return readFile(files.path("errors")); }
    /// Asks it to stop, as a person at the keyboard does.
    void interrupt();
    /// Where there are signals.
    void signal(int number);
    /// Its exit code, or -1 when it does not end in time.
    int wait();

private:
    TemporaryDirectory files;  ///< outlives the program that writes there
    boost::process::child child;
};
