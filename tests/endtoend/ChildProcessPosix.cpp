#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

#include "endtoend/ChildProcess.h"

extern char** environ;

struct ChildProcess::Native {
    pid_t id = 0;
    int pipes[2] = {-1, -1};

    ~Native() {
        for (const int pipe : pipes)
            close(pipe);
    }
};

std::shared_ptr<ChildProcess::Native> ChildProcess::spawn(
    const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    auto native = std::make_shared<Native>();
    int writing[2];
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const Stream stream : {standardOutput, standardError}) {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        native->pipes[stream] = ends[0];
        writing[stream] = ends[1];
        posix_spawn_file_actions_adddup2(&actions, ends[1],
                                         stream == standardOutput ? STDOUT_FILENO : STDERR_FILENO);
    }
    std::string name = program.string();
    std::vector<std::string> texts = arguments;
    std::vector<char*> argv{name.data()};
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);
    const int error =
        posix_spawn(&native->id, name.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    for (const int end : writing)
        close(end);
    if (error != 0)
        throw std::runtime_error(name + " does not start");
    return native;
}

std::size_t ChildProcess::read(Native& native, Stream stream, char* buffer, std::size_t size) {
    const ssize_t count = ::read(native.pipes[stream], buffer, size);
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

void ChildProcess::interrupt(Native& native) {
    ::kill(native.id, SIGINT);
}

void ChildProcess::kill(Native& native) {
    ::kill(native.id, SIGKILL);
}

int ChildProcess::awaitExit(Native& native) {
    int status = 0;
    waitpid(native.id, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
