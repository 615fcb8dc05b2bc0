#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A program that runs beside the test, with what it writes collected. Killed at the end.
class ChildProcess {
public:
    /// Throws std::runtime_error when it cannot be started.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    std::string output() const;
    std::string errors() const;
    /// Returns when standard output contains the text. False when the program ends or the time
    /// is over before.
    bool waitForOutput(const std::string& text, std::chrono::seconds patience);
    /// Asks it to stop, as a person at the keyboard does.
    void interrupt();
    /// Its exit code; kills it, and answers -1, when it does not end in time.
    int wait(std::chrono::seconds patience);

private:
    struct Native;  // of the platform
    enum Stream { standardOutput, standardError };

    static std::shared_ptr<Native> spawn(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments);
    /// 0 at the end.
    static std::size_t read(Native& native, Stream stream, char* buffer, std::size_t size);
    static void interrupt(Native& native);
    static void kill(Native& native);
    static int awaitExit(Native& native);

    void collect(Stream stream);

    std::shared_ptr<Native> native;
    mutable std::mutex mutex;  // guards the texts and the number of open streams
    std::condition_variable changed;
    std::string texts[2];
    int openStreams = 2;
    bool awaited = false;
    std::vector<std::thread> readers;
};
