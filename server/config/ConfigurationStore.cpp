#include "server/config/ConfigurationStore.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "server/JsonFile.h"
#include "server/Log.h"
#include "server/StartError.h"
#include "server/config/ConfigurationCheck.h"
#include "server/config/ConfigurationFields.h"
#include "server/config/FileCalls.h"
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

/// False when something above the path is no object.
bool apply(json::value& document, const ConfigurationPath& path,
           const std::optional<json::value>& value) {
    if (value)
        return path.assign(document, *value);
    path.erase(document);
    return true;
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

ConfigurationStore::ConfigurationStore(std::filesystem::path from) : file(resolved(from)) {
    fileText = readFile(file);
    state = load(fileText);
    accepted = state.document;
    removeLeftBeside(file);
}

ConfigurationStore::State ConfigurationStore::load(const std::string& text) const {
    State loaded{parseJsonFile(file, text), {}};
    const std::vector<Finding> findings = checkConfiguration(loaded.document);
    const JsonLines lines(text);
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

ConfigurationChange ConfigurationStore::change(const ConfigurationPath& path,
                                               std::optional<json::value> value,
                                               const std::function<ResultPair()>& accept) {
    const auto proposal = propose({path, value});
    ConfigurationChange done;
    try {
        done.answer = accept();
    } catch (...) {
        withdraw(proposal);
        throw;
    }
    if (done.answer.succeeded() && !proposal->startsAgain)
        done.answer = ResultPair(ErrorValue::invalid_configuration, "the entry is not complete");
    if (!done.answer.succeeded()) {
        withdraw(proposal);
        return done;
    }
    try {
        keep(proposal);
    } catch (const std::system_error& error) {
        done.notKept = "in force, but not kept in " + file.string() + ": " + error.code().message();
    } catch (const std::runtime_error& error) {  // a conflict, or too much
        done.notKept = std::string("in force, but not kept: ") + error.what();
    }
    if (!done.notKept.empty())
        log(LogLevel::error, "a change of the configuration is " + done.notKept);
    return done;
}

ConfigurationPreview ConfigurationStore::preview(const ConfigurationPath& path,
                                                 const std::optional<json::value>& value) {
    Lock fileLock(fileMutex);
    return checked(path, value);
}

ConfigurationPreview ConfigurationStore::checked(const ConfigurationPath& path,
                                                 const std::optional<json::value>& value) const {
    if (path.depth() > ConfigurationPath::maxDepth)
        throw ConfigurationError("the path has more than 32 names");
    expectFileAsKnown();
    ConfigurationPreview preview{};
    json::value together;
    {
        Lock lock(mutex);
        preview.before = accepted;
        if (!proposals.empty())
            together = state.document;
    }
    preview.after = preview.before;
    if (!apply(preview.after, path, value))
        throw ConfigurationError("a value above it is not an object");
    const auto least = isEntry(path) ? Finding::Weight::fault : Finding::Weight::entry;
    const std::vector<Finding> findings = checkConfiguration(preview.after);
    if (const Finding* const fault = firstFault(findings, least))
        throw ConfigurationError(fault->line());
    preview.isComplete = !firstFault(findings, Finding::Weight::entry);
    expectReadable(prettyJson(preview.after));
    if (!together.is_null() && apply(together, path, value))
        expectReadable(prettyJson(together));  // should the others be accepted, too
    return preview;
}

ConfigurationStore::Proposals::iterator ConfigurationStore::propose(Proposal proposal) {
    Lock fileLock(fileMutex);
    const ConfigurationPreview next = checked(proposal.path, proposal.value);
    proposal.startsAgain = next.isComplete;
    ReplacementFile(file, prettyJson(next.after));  // there is room for it
    Lock lock(mutex);
    const auto added = proposals.insert(proposals.end(), proposal);
    rebuild();
    return added;
}

void ConfigurationStore::withdraw(Proposals::iterator proposal) {
    Lock lock(mutex);
    proposals.erase(proposal);
    rebuild();
}

void ConfigurationStore::keep(Proposals::iterator proposal) {
    Lock fileLock(fileMutex);
    std::string text;
    {
        Lock lock(mutex);
        apply(accepted, proposal->path, proposal->value);
        proposals.erase(proposal);
        text = prettyJson(accepted);
    }
    expectFileAsKnown();
    expectReadable(text);  // others of its time may have been refused that took something away
    ReplacementFile(file, text).commit();
    fileText = std::move(text);
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

void ConfigurationStore::rebuild() {
    State next{accepted, {}};
    for (const Proposal& proposal : proposals)
        apply(next.document, proposal.path, proposal.value);
    next.value = configurationValue(next.document);
    std::swap(state, next);
}

}  // namespace hmi
