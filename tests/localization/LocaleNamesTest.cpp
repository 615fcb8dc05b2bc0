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
    // Specific and neutral names, the first and the last of the table among them.
    expectIdentifiers({{"aa", 0x1000},         {"zu-ZA", 0x0435},
                       {"de-DE", 0x0407},      {"DE-de", 0x0407},
                       {"en-US", 0x0409},      {"en-CA", 0x1009},
                       {"zh-CN", 0x0804},      {"es-ES", 0x0C0A},
                       {"es-419", 0x580A},     {"ca-ES-valencia", 0x0803},
                       {"sr-Cyrl-RS", 0x281A}, {"az-cyrl-az", 0x082C},
                       {"smn-FI", 0x243B},     {"fr-HT", 0x3C0C},
                       {"de", 0x0007},         {"zh", 0x7804},
                       {"ZH-HANS", 0x0004},    {"zh-Hant", 0x7C04},
                       {"bs-Cyrl", 0x641A},    {"mn-Mong", 0x7C50}});
    // Sort orders; outdated names.
    expectIdentifiers({{"de-DE_phoneb", 0x10407},
                       {"hu-HU_technl", 0x1040E},
                       {"es-ES_tradnl", 0x040A},
                       {"ja-JP_radstr", 0x40411},
                       {"zh-TW_pronun", 0x30404},
                       {"X-iv_MATHAN", 0x1007F},
                       {"az-AZ", 0x042C},
                       {"bs-BA", 0x141A},
                       {"en-CB", 0x2409},
                       {"ps-AR", 0x0463},
                       {"sr-BA", 0x181A},
                       {"sr-SP", 0x2C1A},
                       {"uz-UZ", 0x0443}});
    for (const char* withoutItsOwn : {"eo", "en-150", "zh-Hans-HK"})
        expectIdentifiers({{withoutItsOwn, 0x1000}});
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
