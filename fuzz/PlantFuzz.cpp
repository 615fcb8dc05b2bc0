/// Plant files, and behind a line with a dash actions for a runtime of a good one.
#include <cstdlib>
#include <string>

#include "simulator/Control.h"

namespace {

constexpr const char* goodPlant =
    R"({"localNetId": "5.10.20.1.1.1", "runtimes": {"5.10.20.30.1.1": {"eventClasses": {
        "{00000001-0000-0000-0000-00000000ABCD}": {"name": {"1033": "Machine"}, "events": {
            "1": {"kind": "alarm", "severity": 3, "confirm": true, "text": {"1033": "{0}"}},
            "2": {"kind": "message", "text": {"1033": "{0}"}}}}}}}})";

void take(int status, char* answer) {
    ZrSimulatorFree(answer);
    if (status != 200 && status != 400 && status != 404)
        std::abort();
}

/// Numbers that ask for many events or long waits are the user's own choice.
bool isTooMuch(const std::string& text) {
    return text.find("count") != std::string::npos || text.find("pause") != std::string::npos ||
           text.find("delay") != std::string::npos || text.find("after") != std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (isTooMuch(text) || text.find('\0') != std::string::npos)
        return 0;
    char* answer = nullptr;
    if (!text.starts_with('-')) {
        take(ZrSimulatorLoadPlant(text.c_str(), &answer), answer);
        return 0;
    }
    take(ZrSimulatorLoadPlant(goodPlant, &answer), answer);
    answer = nullptr;
    take(ZrSimulatorApply("5.10.20.30.1.1", text.c_str() + 1, &answer), answer);
    answer = nullptr;
    take(ZrSimulatorStatus("5.10.20.30.1.1", &answer), answer);
    return 0;
}
