#include <set>
#include <string_view>

#include <gtest/gtest.h>

#include "proxy/ScriptedErrorMessage.h"
#include "target/proxy/ErrorTable.h"
#include "target/proxy/ErrorText.h"

namespace {

using ZrAtlCom::describe;

constexpr const char* unspecified = "Unspecified error";

TEST(ErrorText, findsTheFirstLayerThatHasTheCode) {
    const std::pair<std::uint32_t, const char*> rows[] = {
        // short texts and their edges
        {0x98110700, "generic error"},
        {0x98110724, "FNX ERROR: item is locked by another client"},
        {0x9811072C, "exception in device specific code"},
        {0x9811072D, unspecified},
        // fixed HRESULTs
        {0x8000FFFF, "E_UNEXPECTED: Catastrophic failure"},
        {0x80070002, unspecified},
        // the protocol's list
        {0x98110000, "GLOBAL: no error"},
        {0x9811001C, unspecified},
        {0x981106FF, unspecified},
        {0x98110756, "FNX ERROR: certificate of the target was refused"},
        {0x98110757, unspecified},
        {0x9811207B, "IO: calibration of the channel failed"},
        {0x98114156, unspecified},
        // modulo 2^32: the codes of control programs, the end record
        {0x18116000, "PLC: program was stopped by a runtime error"},
        {0x9810FFFF, "Last Entry"},
        // bare codes are no HRESULTs
        {0x00000701, unspecified},
    };
    for (const auto& [code, text] : rows)
        EXPECT_STREQ(ZrAtlCom::errorText(static_cast<HRESULT>(code)), text) << std::hex << code;
}

TEST(ErrorTable, groupsStandInOrderWithinTheirRanges) {
    const struct {
        std::string_view prefix;
        std::ptrdiff_t size;
        std::uint32_t first, last;
    } groups[] = {
        {"", 28, 0x0, 0x1B},
        {"ROUTER: ", 11, 0x500, 0x50A},
        {"RTIME: ", 28, 0x1000, 0x1037},
        {"TASKERR: ", 1, 0x600, 0x600},
        {"TRACE: ", 3, 0x1900, 0x1902},
        {"IO: ", 179, 0x2000, 0x2A0F},
        {"PLC: ", 2, 0x80006000, 0x80006001},
        {"N", 77, 0x4000, 0x4155},
        {"FNX ERROR: ", 68, 0x700, 0x756},
        {"", 1, 0xFFFFFFFF, 0xFFFFFFFF},
    };
    ASSERT_EQ(ZrAtlCom::errorTable().size(), 398u);
    auto begin = ZrAtlCom::errorTable().begin();
    for (const auto& [prefix, size, first, last] : groups) {
        std::set<std::uint32_t> codes;
        for (const auto end = begin + size; begin != end; ++begin) {
            codes.insert(begin->code);
            EXPECT_EQ(std::string_view(begin->text).find(prefix), 0u) << begin->text;
        }
        // One code stands twice.
        EXPECT_EQ(std::ssize(codes), size - (codes.count(0x207B) > 0)) << prefix;
        EXPECT_EQ(*codes.begin(), first) << prefix;
        EXPECT_EQ(*codes.rbegin(), last) << prefix;
    }
}

TEST(Describe, prefersTheLibrarysTextAndThenTheTable) {
    scriptedResult = S_FALSE;
    EXPECT_EQ(describe(E_FAIL), "");
    scriptedResult = E_FAIL;
    EXPECT_EQ(describe(E_FAIL), "E_FAIL: Unspecified error");
    EXPECT_FALSE(describe(static_cast<HRESULT>(0x80070002)).empty());
    EXPECT_NE(describe(static_cast<HRESULT>(0x80070002)), unspecified);  // but the system's
}

}  // namespace
