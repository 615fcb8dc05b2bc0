#include "server/config/ConfigurationStore.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "server/JsonFile.h"
#include "server/Log.h"
#include "server/StartError.h"
#include "server/config/ConfigurationCheck.h"
#include "server/config/ConfigurationFields.h"
#include "server/config/ReplacementFile.h"
#include "server/json/JsonLines.h"
#include "server/json/ParseJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace {

/// A change goes to the file that a link points to; the link stays.
std::filesystem::path resolved(const std::filesystem::path& file) {
    std::error_code missing;
    const auto target = std::filesystem::canonical(file, missing);
    return missing ? file : target;
}

/// A target system's entry is the extension's to refuse.
bool isEntry(const ConfigurationPath& path) {
    return path.depth() >= 2 && path.name(0) == "TARGET_SYSTEMS";
}

/// The first finding for which a configuration cannot be used.
const Finding* firstFault(const std::vector<Finding>& findings, Finding::Weight least) {
    const auto found = std::find_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.weight >= least;
    });
    return found == findings.end() ? nullptr : &*found;
}

/// Throws ConfigurationError when the text would not be read at the next start.
void expectReadable(const std::string& text) {
    if (text.size() > maxFileSize)
        throw ConfigurationError("the configuration would be larger than 64 MiB");
    try {
        parseJson(text);
    } catch (const JsonError& error) {
        throw ConfigurationError(std::string("it could not be read again: ") + error.what());
    }
}

}  // namespace

ConfigurationStore::ConfigurationStore(std::filesystem::path from)
    : file(resolved(from)), fileText(readFile(file)), state(load()) {}

ConfigurationStore::State ConfigurationStore::load() const {
    State loaded{parseJsonFile(file, fileText), {}};
    const std::vector<Finding> findings = checkConfiguration(loaded.document);
    const JsonLines lines(fileText);
    const auto told = [&](const Finding& finding) {
        return file.string() + ": line " + std::to_string(lines.of(finding.field)) + ": " +
               finding.line();
    };
    if (const Finding* const fault = firstFault(findings, Finding::Weight::entry))
        throw StartError(told(*fault));
    for (const Finding& finding : findings)
        log(LogLevel::warning, told(finding));
    loaded.value = configurationValue(loaded.document);
    return loaded;
}

std::optional<json::value> ConfigurationStore::get(const ConfigurationPath& path) const {
    Lock lock(mutex);
    const json::value* const found = path.find(state.document);
    return found ? std::optional(*found) : std::nullopt;
}

Value ConfigurationStore::read(const ConfigurationPath& path) const {
    Value value;
    {
        Lock lock(mutex);
        value = state.value;
    }
    for (std::size_t level = 0; level < path.depth(); ++level) {
        const Value* const found = value.lookup(path.name(level));
        if (!found)
            return {};
        value = Value(*found);
    }
    return value;
}

void ConfigurationStore::expectFileAsKnown() const {
    std::string now;
    try {
        now = readFile(file);
    } catch (const StartError& error) {
        throw ConfigurationConflict(error.what());
    }
    if (now != fileText)
        throw ConfigurationConflict(file.string() +
                                    ": somebody else has changed it; the server must be restarted "
                                    "with that file before it can change it");
}

ConfigurationStore::State ConfigurationStore::stateAfter(const ConfigurationPath& path,
                                                         std::optional<json::value> value) const {
    if (path.depth() > ConfigurationPath::maxDepth)
        throw ConfigurationError("the path has more than 32 names");
    State next;
    {
        Lock lock(mutex);
        next.document = state.document;
    }
    if (!value)
        path.erase(next.document);
    else if (!path.assign(next.document, std::move(*value)))
        throw ConfigurationError("a value above it is not an object");
    const auto least = isEntry(path) ? Finding::Weight::fault : Finding::Weight::entry;
    const std::vector<Finding> findings = checkConfiguration(next.document);
    if (const Finding* const fault = firstFault(findings, least))
        throw ConfigurationError(fault->line());
    next.value = configurationValue(next.document);
    return next;
}

void ConfigurationStore::swap(State& other) {
    Lock lock(mutex);
    std::swap(state, other);
}

ConfigurationChange ConfigurationStore::change(const ConfigurationPath& path,
                                               std::optional<json::value> value,
                                               const std::function<ResultPair()>& accept) {
    expectFileAsKnown();
    State next = stateAfter(path, std::move(value));
    std::string text = prettyJson(next.document);
    expectReadable(text);
    const bool startsAgain =
        !firstFault(checkConfiguration(next.document), Finding::Weight::entry);
    ReplacementFile replacement(file, text);
    swap(next);
    ConfigurationChange done{accept(), {}};
    if (done.answer.succeeded() && !startsAgain)
        done.answer = ResultPair(ErrorValue::invalid_configuration, "the entry is not complete");
    if (!done.answer.succeeded()) {
        swap(next);
        return done;
    }
    try {
        replacement.commit();
        fileText = std::move(text);
    } catch (const std::system_error& error) {
        done.notKept = "in force, but not kept in " + file.string() + ": " + error.code().message();
        log(LogLevel::error, "a change of the configuration is " + done.notKept);
    }
    return done;
}

}  // namespace hmi
