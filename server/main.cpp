#include <csignal>
#include <cstdio>
#include <exception>

#include <boost/nowide/args.hpp>

#include "server/Application.h"
#include "server/HeapSettings.h"
#include "server/Options.h"
#include "server/StartError.h"
#include "server/json/Utf8.h"
#include "server/users/Password.h"
#include "server/users/ReadPassword.h"

namespace {

int run(int argc, const char* const* argv) {
    const auto options =
        hmi::Options::parse({argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0)});
    if (!options.information.empty()) {
        std::fputs(options.information.c_str(), stdout);
        return 0;
    }
    if (options.hashPassword) {
        std::puts(hmi::hashPassword(hmi::readPassword()).c_str());
        return 0;
    }
    hmi::configureLog(options.logLevel, options.logFormat);
    hmi::Application(options).run();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const boost::nowide::args utf8(argc, argv);
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);  // a reader that has gone is an error of one write
#endif
    hmi::configureHeap();
    try {
        return run(argc, argv);
    } catch (const hmi::StartError& error) {
        std::fprintf(stderr, "hmi-server: %s\n", hmi::oneLine(error.what()).c_str());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "hmi-server: unexpected: %s\n", error.what());
        return 1;
    }
}
