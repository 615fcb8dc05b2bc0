#include "server/net/StreamWish.h"

#include "server/http/Response.h"
#include "server/http/Target.h"

namespace hmi {

namespace {

std::optional<std::size_t> indexOf(std::string_view name) {
    for (std::size_t i = 0; i < changeTypes; ++i) {
        if (nameOf(static_cast<ChangeType>(i)) == name)
            return i;
    }
    return std::nullopt;
}

}  // namespace

std::optional<StreamWish> StreamWish::parse(std::string_view target) try {
    const Query query = Target::parse(target).query;
    query.allowOnly({"types", "brief"});
    StreamWish parsed;
    if (query.flag("brief"))
        parsed.wanted = Extent::brief;
    const std::string* const wanted = query.find("types");
    if (!wanted) {
        parsed.types.set();
        return parsed;
    }
    parsed.named = true;
    for (std::string_view rest = *wanted; !rest.empty();) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        const auto index = indexOf(rest.substr(0, end));
        if (!index)
            return std::nullopt;
        parsed.types.set(*index);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return parsed;
} catch (const RequestError&) {
    return std::nullopt;
}

}  // namespace hmi
