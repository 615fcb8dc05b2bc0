#include "simulator/Control.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include <boost/json/serialize.hpp>

#include "simulator/Simulator.h"
#include "simulator/plant/ActionReader.h"

namespace {

using namespace ZrSimulator;
namespace json = boost::json;

enum Result { ok = 200, malformed = 400, unknownRuntime = 404, failed = 500 };

void answerWith(const json::value& value, char** answer) {
    if (!answer)
        return;
    const std::string text = json::serialize(value);
    *answer = static_cast<char*>(std::malloc(text.size() + 1));
    if (!*answer)
        throw std::bad_alloc();
    std::memcpy(*answer, text.c_str(), text.size() + 1);
}

int answerError(Result result, const std::string& error, char** answer) {
    answerWith({{"error", error}}, answer);
    return result;
}

/// Runs a control function; without memory there is no answer, only the result.
template <class Body>
int control(char** answer, Body body) noexcept {
    if (answer)
        *answer = nullptr;
    try {
        try {
            answerWith(body(), answer);
            return ok;
        } catch (const FormatError& error) {
            return answerError(malformed, error.what(), answer);
        } catch (const std::out_of_range& error) {
            return answerError(unknownRuntime, error.what(), answer);
        }
    } catch (...) {
        return failed;
    }
}

std::shared_ptr<Runtime> findRuntime(const char* netId) {
    const auto target = parseNetId(netId ? netId : "");
    auto runtime = target ? Simulator::instance().find(*target) : nullptr;
    if (!runtime)
        throw std::out_of_range("no such runtime");
    return runtime;
}

/// The element that a path of the document's errors begins with.
std::string pathOf(const JsonField& document, std::size_t index) {
    return document.isArray() ? '[' + std::to_string(index) + "]." : std::string();
}

}  // namespace

int ZrSimulatorLoadPlant(const char* plant, char** answer) {
    return control(answer, [&] {
        Simulator::instance().load(readPlant(plant ? plant : ""));
        return json::object();
    });
}

int ZrSimulatorApply(const char* netId, const char* actions, char** answer) {
    return control(answer, [&] {
        const auto runtime = findRuntime(netId);
        const auto document = parseJson(actions ? actions : "");
        const JsonField field(document);
        if (const auto unknown = runtime->apply(readActions(field, runtime->catalog())))
            throw FormatError(pathOf(field, *unknown) + "alarm: never raised");
        return json::object();
    });
}

int ZrSimulatorStatus(const char* netId, char** answer) {
    return control(answer, [&] {
        auto status = findRuntime(netId)->status();
        // Objects that have addressed no runtime yet count for every one.
        auto& references = status["liveObjects"].as_int64();
        references += Simulator::instance().unbound()->references;
        return status;
    });
}

void ZrSimulatorShutdown() {
    try {
        Simulator::instance().shutDown();
    } catch (...) {
        // Without memory for an empty plant there is none to shut down.
    }
}

void ZrSimulatorFree(char* answer) {
    std::free(answer);
}
