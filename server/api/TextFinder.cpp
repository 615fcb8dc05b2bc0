#include "server/api/TextFinder.h"

#include <cstdint>

#include "server/unicode/CaseFolding.h"

namespace hmi {

template <class Look>
bool TextFinder::known(std::string_view text, Look look) {
    constexpr std::size_t alignment = 16;
    Known& known = lately[reinterpret_cast<std::uintptr_t>(text.data()) / alignment % lately.size()];
    if (known.text != text.data())
        known = {text.data(), look()};
    return known.contains;
}

bool TextFinder::isIn(std::string_view text) {
    return known(text, [&] { return containsFolded(text, folded); });
}

bool TextFinder::isInFolded(std::string_view text) {
    return known(text, [&] { return text.find(folded) != std::string_view::npos; });
}

bool TextFinder::isIn(const ZrHmiSrv::Value& parameters) {
    for (auto entry = parameters.begin(); entry != parameters.end(); ++entry) {
        if (entry->type() == ZrHmiSrv::ValueType::string &&
            isIn(std::string_view(static_cast<const char*>(*entry), entry->size())))
            return true;
    }
    return false;
}

}  // namespace hmi
