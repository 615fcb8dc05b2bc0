#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/Automation.h"

namespace {

struct Locale {
    std::string_view name;
    LCID identifier;
    bool neutral;
};

/// In lower case and sorted by name.
constexpr Locale locales[] = {
#include "platform/posix/LocaleTable.inc"
};
static_assert(std::ranges::is_sorted(locales, {}, &Locale::name));

/// What LOCALE_NAME_MAX_LENGTH leaves without the terminator.
constexpr std::size_t maximumLength = 84;

constexpr char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Empty, which no locale is called, for text that cannot be a name.
std::string toKey(const WCHAR* name) {
    std::string key;
    for (; *name != 0; ++name) {
        if (*name > 0x7F || key.size() == maximumLength)
            return {};
        key += toLower(static_cast<char>(*name));
    }
    return key;
}

}  // namespace

LCID LocaleNameToLCID(const WCHAR* name, DWORD flags) {
    if (!name)
        return 0;
    const std::string key = toKey(name);
    const auto* found = std::ranges::lower_bound(locales, key, {}, &Locale::name);
    if (found == std::end(locales) || found->name != key)
        return 0;
    const bool neutralAllowed = (flags & LOCALE_ALLOW_NEUTRAL_NAMES) != 0;
    return found->neutral && !neutralAllowed ? 0 : found->identifier;
}
