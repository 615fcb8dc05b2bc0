#include "server/Options.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "server/StartError.h"
#include "server/Version.h"

namespace hmi {

namespace {

/// In the order of LogLevel.
constexpr std::array<std::string_view, 5> levels{"debug", "info", "warning", "error", "off"};

std::filesystem::path toPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

/// The command line as typed, before it is checked as a whole.
struct Typed {
    std::string extension, config, plant, users, certificate, key, history;
    std::string level = "info";
    std::string format = "text";
};

/// The variable of the environment that stands for an option: HMI_LOG_LEVEL for "--log-level".
std::string variableOf(std::string_view option) {
    std::string name = "HMI_";
    for (const char c : option.substr(2))
        name += c == '-' ? '_' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    return name;
}

template <class T>
CLI::Option* add(CLI::App& app, const char* name, const char* value, T& to, const char* what) {
    return app.add_option(name, to, what)->type_name(value)->envname(variableOf(name));
}

void describe(CLI::App& app, Options& options, Typed& typed) {
    const CLI::Validator notEmpty(
        [](std::string& text) { return text.empty() ? "a value is missing" : std::string(); }, {});
    add(app, "--extension", "FILE", typed.extension, "The extension's library")->check(notEmpty);
    add(app, "--config", "FILE", typed.config,
        "The extension's configuration (JSON); accepted changes are written back to it")
        ->check(notEmpty);
    add(app, "--plant", "FILE", typed.plant, "Simulated runtimes to start (JSON)")->check(notEmpty);
    add(app, "--port", "N", options.port, "Port to listen on, 0 for any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    add(app, "--address", "A", options.address, "IP address to listen on")
        ->check(notEmpty)
        ->capture_default_str();
    add(app, "--allow-host", "NAME", options.allowedHosts,
        "Host name by which clients may reach the server, besides addresses and localhost; "
        "repeatable")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(notEmpty);
    add(app, "--trusted-proxy", "ADDRESS", options.trustedProxies,
        "Address of a reverse proxy that names the clients in X-Forwarded-For, and how they "
        "come in X-Forwarded-Proto; repeatable")
        ->allow_extra_args(false)
        ->delimiter(',')
        ->check(notEmpty);
    add(app, "--users", "FILE", typed.users,
        "Who may do what (JSON); without it everybody may do everything, and only on a loopback "
        "address")
        ->check(notEmpty);
    app.add_flag("--hash-password", options.hashPassword,
                 "Read a password from standard input and print its hash for that file");
    app.add_flag("--open", options.open, "Listen on any address although there are no users")
        ->envname("HMI_OPEN");
    add(app, "--certificate", "FILE", typed.certificate,
        "Certificate chain for TLS (PEM), read again on SIGHUP")
        ->check(notEmpty);
    add(app, "--key", "FILE", typed.key, "The certificate's private key (PEM)")->check(notEmpty);
    add(app, "--history", "FILE", typed.history,
        "Keep every change of every event in this database; it is made when it is not there")
        ->check(notEmpty);
    add(app, "--history-locale", "NAME", options.historyLocale, "The language of its texts")
        ->check(notEmpty)
        ->capture_default_str();
    add(app, "--history-days", "N", options.historyDays, "What is older goes")
        ->check(CLI::Range(1, 36'500))
        ->capture_default_str();
    add(app, "--history-size", "MIB", options.historySize, "Of what is beyond it the oldest goes")
        ->check(CLI::Range(1, 16'777'216))
        ->capture_default_str();
    add(app, "--log-level", "L", typed.level, "How much is logged")
        ->check(CLI::IsMember(std::vector<std::string>(levels.begin(), levels.end())))
        ->capture_default_str();
    add(app, "--log-format", "F", typed.format, "text or json: one object a line")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
}

void finish(Options& options, const Typed& typed) {
    if (options.hashPassword)
        return;
    if (typed.extension.empty())
        throw StartError("--extension is missing");
    if (typed.config.empty())
        throw StartError("--config is missing");
    options.extension = toPath(typed.extension);
    options.config = toPath(typed.config);
    options.plant = toPath(typed.plant);
    options.users = toPath(typed.users);
    options.certificate = toPath(typed.certificate);
    options.key = toPath(typed.key);
    options.history = toPath(typed.history);
    const auto* const level = std::find(levels.begin(), levels.end(), typed.level);
    options.logLevel = static_cast<LogLevel>(std::distance(levels.begin(), level));
    options.logFormat = typed.format == "json" ? LogFormat::json : LogFormat::text;
}

}  // namespace

Options Options::parse(std::span<const char* const> arguments) {
    Options options;
    Typed typed;
    CLI::App app("An HMI server that loads the event-logger extension: alarms and messages of "
                 "automation runtimes by HTTP, WebSocket and a page for operators.",
                 "hmi-server");
    app.set_version_flag("--version", std::string("hmi-server ") + version);
    app.footer("Each option but --hash-password can be given in the environment too: HMI_CONFIG "
               "for --config,\nseveral values of a repeatable one with commas between them. The "
               "command line wins.\n"
               "Exit code 2: bad arguments, files that cannot be used, or an extension that "
               "refuses to start.");
    describe(app, options, typed);
    try {
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
        finish(options, typed);
    } catch (const CLI::CallForHelp&) {
        options.information = app.help();
    } catch (const CLI::CallForVersion& asked) {
        options.information = std::string(asked.what()) + "\n";
    } catch (const CLI::Error& error) {
        throw StartError(error.what());
    }
    return options;
}

}  // namespace hmi
