#include "server/config/ConfigurationStore.h"

#include <utility>

#include "server/JsonFile.h"
#include "server/StartError.h"
#include "server/config/ConfigurationFields.h"
#include "server/config/ReplacementFile.h"
#include "server/json/ParseJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;

namespace {

/// A change goes to the file that a link points to; the link stays.
std::filesystem::path resolved(const std::filesystem::path& file) {
    std::error_code missing;
    const auto target = std::filesystem::canonical(file, missing);
    return missing ? file : target;
}

/// A target system's entry is the extension's to refuse, also where it is malformed.
bool isEntry(const ConfigurationPath& path) {
    return path.depth() >= 2 && path.name(0) == "TARGET_SYSTEMS";
}

/// False when something above the path is no object.
bool apply(json::value& document, const ConfigurationPath& path,
           const std::optional<json::value>& value) {
    if (value)
        return path.assign(document, *value);
    path.erase(document);
    return true;
}

/// Throws ConfigurationError when a change at the path has made no configuration.
void check(const json::value& document, const ConfigurationPath& path) {
    if (!isEntry(path)) {
        if (const auto fault = findFieldFault(document))
            throw ConfigurationError(*fault);
    }
    // The extension would not start with it the next time.
    if (path.depth() > 0 && path.name(0) == "TIMEOUT") {
        if (const auto fault = findTimeoutFault(document))
            throw ConfigurationError(*fault);
    }
}

}  // namespace

ConfigurationStore::State ConfigurationStore::load(const std::filesystem::path& file) {
    State loaded{readJsonFile(file), {}};
    if (const auto fault = findFieldFault(loaded.document))
        throw StartError(file.string() + ": " + *fault);
    loaded.value = configurationValue(loaded.document);
    return loaded;
}

ConfigurationStore::ConfigurationStore(std::filesystem::path from)
    : file(resolved(from)), state(load(from)) {
    accepted = state.document;
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

ResultPair ConfigurationStore::change(const ConfigurationPath& path,
                                      std::optional<json::value> value,
                                      const std::function<ResultPair()>& accept) {
    const auto proposal = propose({path, value});
    ResultPair answer;
    try {
        answer = accept();
    } catch (...) {
        withdraw(proposal);
        throw;
    }
    if (answer.succeeded())
        keep(proposal);
    else
        withdraw(proposal);
    return answer;
}

ConfigurationStore::Proposals::iterator ConfigurationStore::propose(const Proposal& proposal) {
    Lock fileLock(fileMutex);
    json::value next;
    {
        Lock lock(mutex);
        next = accepted;
    }
    if (!apply(next, proposal.path, proposal.value))
        throw ConfigurationError("a value above it is not an object");
    check(next, proposal.path);
    ReplacementFile(file, prettyJson(next));  // there is room for it
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
    ReplacementFile(file, text).commit();
}

void ConfigurationStore::rebuild() {
    State next{accepted, {}};
    for (const Proposal& proposal : proposals)
        apply(next.document, proposal.path, proposal.value);
    next.value = configurationValue(next.document);
    std::swap(state, next);
}

}  // namespace hmi
