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

}  // namespace

ConfigurationStore::State ConfigurationStore::load(const std::filesystem::path& file) {
    State loaded{readJsonFile(file), {}};
    if (const auto fault = findFieldFault(loaded.document))
        throw StartError(file.string() + ": " + *fault);
    loaded.value = configurationValue(loaded.document);
    return loaded;
}

ConfigurationStore::ConfigurationStore(std::filesystem::path from)
    : file(resolved(from)), state(load(from)) {}

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
    State next;
    {
        Lock lock(mutex);
        next.document = state.document;
    }
    if (!value)
        path.erase(next.document);
    else if (!path.assign(next.document, std::move(*value)))
        throw ConfigurationError("a value above it is not an object");
    if (!isEntry(path)) {
        if (const auto fault = findFieldFault(next.document))
            throw ConfigurationError(*fault);
    }
    // The extension would not start with it the next time.
    if (path.depth() > 0 && path.name(0) == "TIMEOUT") {
        if (const auto fault = findTimeoutFault(next.document))
            throw ConfigurationError(*fault);
    }
    next.value = configurationValue(next.document);
    ReplacementFile replacement(file, prettyJson(next.document));
    {
        Lock lock(mutex);
        std::swap(state, next);
    }
    ResultPair answer = accept();
    if (!answer.succeeded()) {
        Lock lock(mutex);
        std::swap(state, next);
        return answer;
    }
    replacement.commit();
    return answer;
}

}  // namespace hmi
