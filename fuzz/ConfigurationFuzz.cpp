/// Configurations: what has no fault is accepted, written, and must then be read again without one.
#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "server/config/ConfigurationCheck.h"
#include "server/config/ConfigurationFields.h"
#include "server/json/JsonLines.h"
#include "server/json/ParseJson.h"

namespace json = boost::json;

namespace {

bool hasFault(const json::value& document) {
    const auto findings = hmi::checkConfiguration(document);
    return std::any_of(findings.begin(), findings.end(), [](const hmi::Finding& finding) {
        return finding.weight != hmi::Finding::Weight::warning;
    });
}

void expect(bool condition) {
    if (!condition)
        std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const json::value document = hmi::parseJson(text);
        const hmi::JsonLines lines(text);
        const auto last = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
        for (const hmi::Finding& finding : hmi::checkConfiguration(document))
            expect(lines.of(finding.field) <= last);
        if (hasFault(document))
            return 0;
        hmi::configurationValue(document);
        // Not equal in every digit: the parser rounds very long numbers a little differently.
        expect(!hasFault(hmi::parseJson(hmi::prettyJson(document))));
    } catch (const hmi::JsonError&) {
        return 0;
    }
    return 0;
}
