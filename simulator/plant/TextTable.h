#pragma once

#include <map>
#include <string>

#include "platform/Automation.h"

namespace ZrSimulator {

/// One text in several languages, by Windows locale identifier. UTF-8.
class TextTable {
public:
    /// False, and nothing added, when the locale has a text already.
    bool add(LCID lcid, std::string text) { return texts.emplace(lcid, std::move(text)).second; }

    /// The text of this very locale or else of the first that has the same primary language;
    /// null when there is none.
    const std::string* find(LCID lcid) const;
    /// As `find`, but falls back to English and then to the text of the lowest identifier, so
    /// that it answers an empty text only where there is no text at all.
    const std::string& inLanguage(LCID lcid) const;

private:
    std::map<LCID, std::string> texts;
};

}  // namespace ZrSimulator
