#include <cwchar>
#include <stdexcept>
#include <windows.h>

#include "endtoend/ChildProcess.h"

struct ChildProcess::Native {
    HANDLE process = nullptr;
    HANDLE pipes[2] = {};

    ~Native() {
        CloseHandle(process);
        for (HANDLE pipe : pipes)
            CloseHandle(pipe);
    }
};

namespace {

/// Interrupting reaches all programs of a console: the test and its children have one of their own,
/// where the test takes no notice of it.
void leaveConsoleOfOthers() {
    static const bool left = [] {
        FreeConsole();
        return AllocConsole() && SetConsoleCtrlHandler([](DWORD) -> BOOL { return TRUE; }, TRUE);
    }();
    if (!left)
        throw std::runtime_error("no console");
}

/// The tests' arguments have neither quotation marks nor backslashes at their end.
std::wstring commandLine(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments) {
    std::wstring line = L"\"" + program.wstring() + L"\"";
    for (const std::string& argument : arguments)
        line += L" \"" +
                std::filesystem::path(std::u8string(argument.begin(), argument.end())).wstring() +
                L"\"";
    return line;
}

}  // namespace

std::shared_ptr<ChildProcess::Native> ChildProcess::spawn(
    const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    leaveConsoleOfOthers();
    auto native = std::make_shared<Native>();
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    for (const Stream stream : {standardOutput, standardError}) {
        HANDLE& end = stream == standardOutput ? startup.hStdOutput : startup.hStdError;
        if (!CreatePipe(&native->pipes[stream], &end, &inherited, 0))
            throw std::runtime_error("no pipe");
        SetHandleInformation(native->pipes[stream], HANDLE_FLAG_INHERIT, 0);
    }
    std::wstring line = commandLine(program, arguments);
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        nullptr, &startup, &process);
    CloseHandle(startup.hStdOutput);
    CloseHandle(startup.hStdError);
    if (!started)
        throw std::runtime_error(program.string() + " does not start");
    CloseHandle(process.hThread);
    native->process = process.hProcess;
    return native;
}

std::size_t ChildProcess::read(Native& native, Stream stream, char* buffer, std::size_t size) {
    DWORD count = 0;
    const BOOL read =
        ReadFile(native.pipes[stream], buffer, static_cast<DWORD>(size), &count, nullptr);
    return read ? count : 0;
}

void ChildProcess::interrupt(Native&) {
    GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
}

void ChildProcess::kill(Native& native) {
    TerminateProcess(native.process, 1);
}

int ChildProcess::awaitExit(Native& native) {
    DWORD code = 0;
    WaitForSingleObject(native.process, INFINITE);
    GetExitCodeProcess(native.process, &code);
    return static_cast<int>(code);
}
