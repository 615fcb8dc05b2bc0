#include "server/users/ReadPassword.h"

#include <cstdio>
#include <iostream>

#ifndef _WIN32
#include <termios.h>
#include <unistd.h>
#endif

#include "server/StartError.h"

namespace hmi {

namespace {

#ifdef _WIN32
bool isTerminal() {
    return false;
}
class Hidden {};
#else
bool isTerminal() {
    return isatty(STDIN_FILENO) == 1;
}

/// What is typed is not shown for as long as this lives.
class Hidden {
public:
    Hidden() {
        tcgetattr(STDIN_FILENO, &before);
        termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSANOW, &silent);
    }
    ~Hidden() {
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
        std::fputc('\n', stderr);
    }
    Hidden(const Hidden&) = delete;
    Hidden& operator=(const Hidden&) = delete;

private:
    termios before{};
};
#endif

std::string readLine() {
    std::string line;
    std::getline(std::cin, line);
    if (line.ends_with('\r'))
        line.pop_back();
    return line;
}

std::string ask(const char* prompt) {
    std::fputs(prompt, stderr);
    [[maybe_unused]] const Hidden hidden;
    return readLine();
}

}  // namespace

std::string readPassword() {
    const bool asks = isTerminal();
    std::string password = asks ? ask("Password: ") : readLine();
    if (password.empty())
        throw StartError("a password is not empty");
    if (asks && ask("Again: ") != password)
        throw StartError("the two differ");
    return password;
}

}  // namespace hmi
