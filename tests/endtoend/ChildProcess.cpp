#include "endtoend/ChildProcess.h"

#include <algorithm>
#include <iterator>

ChildProcess::ChildProcess(const std::filesystem::path& program,
                           const std::vector<std::string>& arguments)
    : native(spawn(program, arguments)) {
    for (const Stream stream : {standardOutput, standardError})
        readers.emplace_back([this, stream] { collect(stream); });
}

ChildProcess::~ChildProcess() {
    if (!awaited) {
        kill(*native);
        awaitExit(*native);
    }
    for (std::thread& reader : readers)
        reader.join();
}

void ChildProcess::collect(Stream stream) {
    char buffer[4096];
    while (const std::size_t size = read(*native, stream, buffer, sizeof buffer)) {
        const std::lock_guard lock(mutex);
        // Windows ends a line with two characters.
        std::remove_copy(buffer, buffer + size, std::back_inserter(texts[stream]), '\r');
        changed.notify_all();
    }
    const std::lock_guard lock(mutex);
    --openStreams;
    changed.notify_all();
}

std::string ChildProcess::output() const {
    const std::lock_guard lock(mutex);
    return texts[standardOutput];
}

std::string ChildProcess::errors() const {
    const std::lock_guard lock(mutex);
    return texts[standardError];
}

bool ChildProcess::waitForOutput(const std::string& text, std::chrono::seconds patience) {
    std::unique_lock lock(mutex);
    const auto found = [&] { return texts[standardOutput].find(text) != std::string::npos; };
    changed.wait_for(lock, patience, [&] { return found() || openStreams == 0; });
    return found();
}

void ChildProcess::interrupt() {
    interrupt(*native);
}

int ChildProcess::wait(std::chrono::seconds patience) {
    std::unique_lock lock(mutex);
    const bool ended = changed.wait_for(lock, patience, [&] { return openStreams == 0; });
    lock.unlock();
    if (!ended)
        kill(*native);
    const int code = awaitExit(*native);
    awaited = true;
    return ended ? code : -1;
}
