#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "localization/LocaleNames.h"

namespace {

using ZrHmiEventLogger::localeToLanguageId;
using ZrHmiEventLogger::normaliseLocale;

struct Identified {
    std::string locale;
    LCID identifier;
};

void expectIdentifiers(const std::vector<Identified>& expected) {
    for (const auto& [locale, identifier] : expected)
        EXPECT_EQ(localeToLanguageId(locale), identifier) << testing::PrintToString(locale);
}

TEST(LocaleNames, NormalisingTouchesFirstOccurrencesAndLowerCaseOnly) {
    const std::pair<const char*, const char*> cases[] = {
        {"en_US", "en-US"},
        {"en_US_x", "en-US_x"},
        {"sr_Latn_RS", "sr-Latn_RS"},
        {"zh-cn", "zh-CHS"},
        {"zh_cn", "zh-CHS"},
        {"zh-CN", "zh-CN"},
        {"ZH-cn", "ZH-cn"},
        {"zh-cn-x", "zh-CHS-x"},
        {"x-zh-cn-zh-cn", "x-zh-CHS-zh-cn"},
        {"x_zh_cn", "x-zh_cn"},
        {"", ""},
    };
    for (const auto& [locale, normalised] : cases)
        EXPECT_EQ(normaliseLocale(locale), normalised);
}

TEST(LocaleNames, KnownNamesInAnyCaseGiveTheirWindowsIdentifiers) {
    // The first and the last of the table, neutral names, a sort order, outdated names, and one
    // without an identifier of its own.
    expectIdentifiers({{"aa", 0x1000}, {"zu-ZA", 0x0435}, {"de-DE", 0x0407}, {"DE-de", 0x0407},
                       {"de", 0x0007}, {"zh", 0x7804}, {"ZH-HANS", 0x0004}, {"ca-ES-valencia", 0x0803},
                       {"de-DE_phoneb", 0x10407}, {"X-iv_MATHAN", 0x1007F}, {"az-AZ", 0x042C},
                       {"sr-SP", 0x2C1A}, {"en-150", 0x1000}});
}

TEST(LocaleNames, WhatIsNoLocaleGivesZero) {
    using namespace std::string_literals;
    // Also malformed UTF-8, and letters outside ASCII whose lower case would make a name.
    for (const std::string& locale :
         {""s, "-"s, " de-DE"s, "de-DE "s, "de-"s, "zh-CHS-x"s, std::string(200, 'a'), "de-DE\0"s,
          "de-DE\0x"s, "\0"s, "az-az"s, "AZ-AZ"s, "sr-sp"s, "de-DE\xFF"s, "\xC3"s,
          "\xE2\x84\xAA\x61-GE"s, "\xC4\xB0s"s})
        expectIdentifiers({{locale, 0}});
}

}  // namespace
