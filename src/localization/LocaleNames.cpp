#include "localization/LocaleNames.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/Text.h"

namespace ZrHmiEventLogger {

namespace {

struct Correction {
    std::string_view name;
    std::string_view platformName;
};

/// Outdated names that clients still send. Those that stand for themselves were considered and are
/// right as they are.
constexpr Correction corrections[] = {
    {"az-AZ", "az-Latn-AZ"},
    {"bs-BA", "bs-Latn-BA"},
    {"en-CB", "en-029"},
    {"eo", "eo"},
    {"ns", "ns"},
    {"ns-ZA", "ns-ZA"},
    {"ps-AR", "ps-AF"},
    {"sr-BA", "sr-Latn-BA"},
    {"sr-SP", "sr-Latn-ME"},
    {"tl", "tl"},
    {"tl-PH", "tl-PH"},
    {"uz-UZ", "uz-Latn-UZ"},
};

void replaceFirst(std::string& text, std::string_view from, std::string_view to) {
    if (const auto position = text.find(from); position != std::string::npos)
        text.replace(position, from.size(), to);
}

}  // namespace

std::string normaliseLocale(std::string locale) {
    replaceFirst(locale, "_", "-");
    replaceFirst(locale, "zh-cn", "zh-CHS");
    return locale;
}

LCID localeToLanguageId(std::string localeName) {
    const auto* correction = std::ranges::find(corrections, localeName, &Correction::name);
    if (correction != std::end(corrections))
        localeName = correction->platformName;
    // To Windows the empty name means the invariant locale, and it would read a name only up to a
    // zero character.
    if (localeName.empty() || localeName.find('\0') != std::string::npos)
        return 0;
    return LocaleNameToLCID(toUtf16(localeName).c_str(), LOCALE_ALLOW_NEUTRAL_NAMES);
}

}  // namespace ZrHmiEventLogger
