#include "server/metrics/ProcessMetrics.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>

#ifndef _WIN32
#include <sys/resource.h>
#include <unistd.h>
#endif

#include "server/Version.h"

namespace hmi {

namespace {

/// When the program was loaded, near enough.
const std::chrono::system_clock::time_point start = std::chrono::system_clock::now();

void gauge(PrometheusText& text, std::string_view name, std::string_view help, double value) {
    text.family(name, "gauge", help);
    text.sample({}, value);
}

#ifndef _WIN32
double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

void writeUsage(PrometheusText& text) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    text.family("process_cpu_seconds_total", "counter", "Processor time that was used.");
    text.sample({}, seconds(usage.ru_utime) + seconds(usage.ru_stime));

    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;  // the second is what is resident
    gauge(text, "process_resident_memory_bytes", "Memory that is in use.",
          static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)));

    namespace fs = std::filesystem;
    std::error_code ignored;
    const auto files = std::distance(fs::directory_iterator("/proc/self/fd", ignored),
                                     fs::directory_iterator());
    gauge(text, "process_open_fds", "Files and connections that are open.",
          static_cast<double>(files));
}
#else
void writeUsage(PrometheusText&) {}
#endif

}  // namespace

void writeProcess(PrometheusText& text) {
    text.family("hmi_build_info", "gauge", "1, with the version of the server.");
    text.sample({{"version", version}, {"build", build}}, 1);
    gauge(text, "process_start_time_seconds", "When the server was started.",
          std::chrono::duration<double>(start.time_since_epoch()).count());
    writeUsage(text);
}

}  // namespace hmi
