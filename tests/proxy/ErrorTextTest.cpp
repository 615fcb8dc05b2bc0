#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "proxy/ScriptedErrorMessage.h"
#include "target/proxy/ErrorTable.h"
#include "target/proxy/ErrorText.h"

namespace {

using ZrAtlCom::describe;
using ZrAtlCom::ErrorRecord;
using ZrAtlCom::errorTable;
using ZrAtlCom::errorText;

constexpr const char* unspecified = "Unspecified error";

HRESULT hresult(std::uint32_t bits) {
    return static_cast<HRESULT>(bits);
}

TEST(ErrorText, findsTheFirstLayerThatHasTheCode) {
    const struct {
        std::uint32_t hr;
        const char* text;
    } rows[] = {
        // short texts and their edges
        {0x98110700, "generic error"},
        {0x98110701, "service is not supported by server"},
        {0x98110706, "invalid parameter value(s)"},
        {0x9811070B, "invalid parameter value(s)"},
        {0x98110723, "access denied"},
        {0x98110724, "FNX ERROR: item is locked by another client"},
        {0x9811072C, "exception in device specific code"},
        {0x9811072D, unspecified},
        // fixed HRESULTs
        {0x8000FFFF, "E_UNEXPECTED: Catastrophic failure"},
        {0x80004005, "E_FAIL: Unspecified error"},
        {0x80070057, "E_INVALIDARG: One or more arguments are invalid"},
        {0x80070002, unspecified},
        // the protocol's list
        {0x98110000, "GLOBAL: no error"},
        {0x98110006, "GLOBAL: target port not found"},
        {0x9811001C, unspecified},
        {0x981106FF, unspecified},
        {0x98110745, "FNX ERROR: timeout elapsed"},
        {0x98110748, "FNX ERROR: zep port not open"},
        {0x98110756, "FNX ERROR: certificate of the target was refused"},
        {0x98110757, unspecified},
        {0x9811207B, "IO: calibration of the channel failed"},
        {0x98114156, unspecified},
        // modulo 2^32: the codes of control programs, the end record
        {0x18116000, "PLC: program was stopped by a runtime error"},
        {0x9810FFFF, "Last Entry"},
        // bare codes are no HRESULTs
        {0x00000701, unspecified},
        {0xFFFFFFFF, unspecified},
    };
    for (const auto& row : rows)
        EXPECT_STREQ(errorText(hresult(row.hr)), row.text) << std::hex << row.hr;
}

/// A run of records; it ends where another prefix comes.
struct Group {
    std::vector<std::string_view> prefixes;
    std::uint32_t first;
    std::uint32_t last;
    std::size_t count;  // 0: any
};

std::string_view prefixOf(const ErrorRecord& record) {
    const std::string_view text = record.text;
    const auto colon = text.find(": ");
    return colon == std::string_view::npos ? std::string_view() : text.substr(0, colon + 2);
}

TEST(ErrorTable, groupsStandInOrderWithinTheirRanges) {
    const Group groups[] = {
        {{"GLOBAL: ", ""}, 0x0, 0x1B, 0},
        {{"ROUTER: "}, 0x500, 0x50A, 0},
        {{"RTIME: "}, 0x1000, 0x1037, 0},
        {{"TASKERR: "}, 0x600, 0x600, 1},
        {{"TRACE: "}, 0x1900, 0x1902, 3},
        {{"IO: "}, 0x2000, 0x2A0F, 179},
        {{"PLC: "}, 0x80006000, 0x80006001, 2},
        {{"NC: ", "NCChn: ", "NcChn: ", "NcTrafo: "}, 0x4000, 0x4155, 0},
        {{"FNX ERROR: "}, 0x700, 0x756, 0},
        {{""}, 0xFFFFFFFF, 0xFFFFFFFF, 1},
    };
    const auto table = errorTable();
    ASSERT_EQ(table.size(), 398u);
    auto next = table.begin();
    for (const Group& group : groups) {
        SCOPED_TRACE(group.prefixes.front());
        const auto begin = next;
        next = std::find_if(begin, table.end(), [&](const ErrorRecord& record) {
            return std::count(group.prefixes.begin(), group.prefixes.end(), prefixOf(record)) == 0;
        });
        const auto byCode = [](const auto& a, const auto& b) { return a.code < b.code; };
        ASSERT_NE(begin, next);
        EXPECT_EQ(std::min_element(begin, next, byCode)->code, group.first);
        EXPECT_EQ(std::max_element(begin, next, byCode)->code, group.last);
        if (group.count > 0) {
            EXPECT_EQ(next - begin, static_cast<std::ptrdiff_t>(group.count));
        }
    }
    EXPECT_EQ(next, table.end());
    const auto unprefixed = std::count_if(table.begin(), table.end() - 1, [](const auto& record) {
        return prefixOf(record).empty() && record.code >= 0x14 && record.code <= 0x1B;
    });
    EXPECT_EQ(unprefixed, 7);
}

TEST(ErrorTable, onlyOneCodeStandsTwice) {
    std::map<std::uint32_t, int> records;
    for (const ErrorRecord& record : errorTable())
        ++records[record.code];
    for (const auto& [code, count] : records)
        EXPECT_EQ(count, code == 0x207B ? 2 : 1) << std::hex << code;
}

TEST(Describe, prefersTheLibrarysTextEvenWhenItIsEmpty) {
    scriptErrorMessage(S_OK, "Ger\xC3\xA4t gest\xC3\xB6rt");
    EXPECT_EQ(describe(E_FAIL), "Ger\xC3\xA4t gest\xC3\xB6rt");
    scriptErrorMessage(S_FALSE, nullptr);
    EXPECT_EQ(describe(E_FAIL), "");
}

TEST(Describe, takesTheTableAndThenTheSystem) {
    scriptErrorMessage(E_FAIL, "not to be used");
    EXPECT_EQ(describe(hresult(0x98110748)), "FNX ERROR: zep port not open");
    EXPECT_EQ(describe(E_FAIL), "E_FAIL: Unspecified error");
    EXPECT_EQ(describe(hresult(0x98110757)), unspecified);

    std::array<char, 4096> buffer{};
    const DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const DWORD fileNotFound = 0x80070002;
    ASSERT_GT(FormatMessageA(flags, nullptr, fileNotFound, 0, buffer.data(), 4096, nullptr), 0u);
    EXPECT_EQ(describe(hresult(fileNotFound)), buffer.data());
}

TEST(HexText, hasEightLowerCaseDigits) {
    EXPECT_EQ(ZrAtlCom::hexText(hresult(0x9811070A)), "0x9811070a");
    EXPECT_EQ(ZrAtlCom::hexText(1), "0x00000001");
}

}  // namespace
