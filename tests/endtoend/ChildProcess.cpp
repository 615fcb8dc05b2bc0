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

/// Windows interrupts all programs of a console: the test and its children have one of their own,
/// where the test takes no notice of it.
struct OwnConsole : process::extend::handler {
    template <class Executor>
    void on_setup(Executor&) const {
#ifdef _WIN32
        [[maybe_unused]] static const bool made = [] {
            FreeConsole();
            return AllocConsole() &&
                   SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
        }();
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
    std::ifstream stream(path);  // as text, which has other ends of lines on Windows
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
            OwnConsole()) {}

void ChildProcess::interrupt() {
#ifdef _WIN32
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
#else
    kill(child.id(), SIGINT);
#endif
}

void ChildProcess::signal([[maybe_unused]] int number) {
#ifndef _WIN32
    kill(child.id(), number);
#endif
}

int ChildProcess::wait() {
    return eventually([&] { return !isRunning(); }) ? child.exit_code() : -1;
}
