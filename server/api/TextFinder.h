#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "host/Value.h"

namespace hmi {

/// Looks for one text in many others, most of which are shared: what was looked at lately is not
/// looked at again. The others live longer than it does.
class TextFinder {
public:
    /// `folded`: as `foldCase` makes it.
    explicit TextFinder(std::string folded) : folded(std::move(folded)) {}

    bool isIn(std::string_view text);
    /// The same of a text that is folded already.
    bool isInFolded(std::string_view text);
    /// In one of these parameters.
    bool isIn(const ZrHmiSrv::Value& parameters);

private:
    template <class Look>
    bool known(std::string_view text, Look look);

    struct Known {
        const char* text = nullptr;
        bool contains = false;
    };

    const std::string folded;
    std::array<Known, 1024> lately;  ///< by the places of the texts
};

}  // namespace hmi
