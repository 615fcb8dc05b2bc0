#include <gtest/gtest.h>

#include "target/proxy/Guid.h"

namespace {

using ZrAtlCom::guidText;
using ZrAtlCom::parseGuid;

TEST(Guid, textHasLeadingZerosAndReadsBack) {
    const GUID guid{0x0000ABCD, 0x0012, 0xFE34, {0x05, 0x6F, 0x00, 0x11, 0xA2, 0xB3, 0x0C, 0xFF}};
    EXPECT_EQ(guidText(guid), "{0000ABCD-0012-FE34-056F-0011A2B30CFF}");
    EXPECT_TRUE(parseGuid(guidText(guid)) == guid);
    EXPECT_TRUE(parseGuid("{0000abcd-0012-fe34-056f-0011a2b30cff}") == guid);
}

TEST(Guid, otherTextIsTheZeroGuid) {
    const std::string_view malformed[] = {
        "",
        "0000ABCD-0012-FE34-056F-0011A2B30CFF",
        "{0000ABCD-0012-FE34-056F-0011A2B30CFF} ",
        "(0000ABCD-0012-FE34-056F-0011A2B30CFF)",
        "{0000ABCD-0012-FE34-056F0-011A2B30CFF}",
        "{0000ABCG-0012-FE34-056F-0011A2B30CFF}",
        "{+000ABCD-0012-FE34-056F-0011A2B30CFF}",
        std::string_view("{0000ABCD-0012-FE34-056F-0011A2B30C\0F}", 38),
    };
    for (const auto text : malformed)
        EXPECT_TRUE(parseGuid(text) == GUID{}) << text;
}

}  // namespace
