#include "simulator/plant/TextTable.h"

#include <algorithm>

namespace ZrSimulator {

namespace {

constexpr LCID englishUnitedStates = 1033;

LCID primaryLanguage(LCID lcid) {
    return lcid & 0x3FF;
}

}  // namespace

const std::string* TextTable::find(LCID lcid) const {
    if (const auto exact = texts.find(lcid); exact != texts.end())
        return &exact->second;
    const auto related = std::find_if(texts.begin(), texts.end(), [&](const auto& entry) {
        return primaryLanguage(entry.first) == primaryLanguage(lcid);
    });
    return related == texts.end() ? nullptr : &related->second;
}

const std::string& TextTable::inLanguage(LCID lcid) const {
    static const std::string none;
    if (texts.empty())
        return none;
    for (const LCID candidate : {lcid, englishUnitedStates}) {
        if (const auto* text = find(candidate))
            return *text;
    }
    return texts.begin()->second;
}

}  // namespace ZrSimulator
