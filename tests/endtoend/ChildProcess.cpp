#include "endtoend/ChildProcess.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <random>
#include <thread>

#ifdef _WIN32
#include <windows.h>

#include <boost/system/error_code.hpp>
#include <boost/winapi/handle_info.hpp>
#endif

#include <boost/process/args.hpp>
#include <boost/process/exe.hpp>
#include <boost/process/extend.hpp>
#include <boost/process/io.hpp>

namespace fs = std::filesystem;
namespace process = boost::process;

namespace {

/// Windows interrupts whole groups of processes: this one shall not be the test's.
struct OwnGroup : process::extend::handler {
    template <class Executor>
    void on_setup([[maybe_unused]] Executor& executor) const {
#ifdef _WIN32
        executor.creation_flags |= CREATE_NEW_PROCESS_GROUP;
#endif
    }
};

}  // namespace

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

TemporaryDirectory::TemporaryDirectory() {
    std::random_device random;
    const auto name = std::to_string(random()) + "-" + std::to_string(random());
    directory = fs::temp_directory_path() / ("hmi-server-test-" + name);
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

ChildProcess::ChildProcess(const fs::path& program, const std::vector<std::string>& arguments)
    : child(process::exe = program.string(), process::args = arguments,
            process::std_out > files.path("output"), process::std_err > files.path("errors"),
            OwnGroup()) {}

void ChildProcess::interrupt() {
#ifdef _WIN32
    GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, child.id());
#else
    kill(child.id(), SIGINT);
#endif
}

int ChildProcess::wait() {
    return eventually([&] { return !isRunning(); }) ? child.exit_code() : -1;
}
