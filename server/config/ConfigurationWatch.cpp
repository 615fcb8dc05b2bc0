#include "server/config/ConfigurationWatch.h"

namespace hmi {

using ZrHmiSrv::Value;

namespace {

bool covers(const ConfigurationPath& pattern, const ConfigurationPath& path) {
    if (pattern.depth() == 0 || pattern.depth() > path.depth())
        return false;
    for (std::size_t level = 0; level < pattern.depth(); ++level) {
        if (pattern.name(level) != "*" && pattern.name(level) != path.name(level))
            return false;
    }
    return true;
}

}  // namespace

ConfigurationWatch::ConfigurationWatch(const Value& settings) {
    for (const Value* item = settings.begin_vector(); item != settings.end_vector(); ++item) {
        const Value* const flags = item->lookup("flags");
        const Value* const paths = item->lookup("paths");
        if (!flags || !paths)
            continue;
        for (const Value* path = paths->begin_vector(); path != paths->end_vector(); ++path) {
            if (auto parsed = ConfigurationPath::parse(static_cast<const char*>(*path)))
                patterns.push_back(
                    {static_cast<unsigned>(static_cast<int>(*flags)), std::move(*parsed)});
        }
    }
}

std::optional<ConfigurationWatch::Match> ConfigurationWatch::match(const ConfigurationPath& path,
                                                                   bool deleted) const {
    for (const Pattern& pattern : patterns) {
        if (!covers(pattern.path, path))
            continue;
        const bool whole = pattern.path.depth() == path.depth();
        const Event event = deleted && whole ? Event::valueDeleted : Event::valueSet;
        if (pattern.flags & static_cast<unsigned>(event))
            return Match{path.upTo(pattern.path.depth()), event};
    }
    return std::nullopt;
}

}  // namespace hmi
