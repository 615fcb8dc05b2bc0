#include <gtest/gtest.h>

#include "proxy/ScriptedErrorMessage.h"
#include "targetsystem/proxy/ErrorText.h"

namespace {

using ZrAtlCom::describe;

constexpr const char* unspecified = "Unspecified error";

TEST(ErrorText, findsTheFirstLayerThatHasTheCode) {
    const std::pair<std::uint32_t, const char*> rows[] = {
        // short texts and their edges
        {0x98110700, "generic error"},
        {0x98110701, "service is not supported by server"},
        {0x98110723, "access denied"},
        {0x98110724, "FNX ERROR: item is locked by another client"},
        {0x9811072C, "exception in device specific code"},
        {0x9811072D, unspecified},
        // fixed HRESULTs
        {0x8000FFFF, "E_UNEXPECTED: Catastrophic failure"},
        {0x80070057, "E_INVALIDARG: One or more arguments are invalid"},
        {0x80070002, unspecified},
        // the protocol's list: the ends of its groups
        {0x98110000, "GLOBAL: no error"},
        {0x9811001B, "IP host unreachable!"},
        {0x9811001C, unspecified},
        {0x98110500, "ROUTER: routing table could not be read"},
        {0x9811050A, "ROUTER: router is stopping"},
        {0x98110600, "TASKERR: task was stopped by an exception"},
        {0x981106FF, unspecified},
        {0x98110756, "FNX ERROR: certificate of the target was refused"},
        {0x98110757, unspecified},
        {0x98111000, "RTIME: real-time kernel stopped on a fault"},
        {0x98111037, "RTIME: processor lacks a feature that real time requires"},
        {0x98111902, "TRACE: trace variable is unknown"},
        {0x98112000, "IO: driver failed to start"},
        {0x9811207B, "IO: calibration of the channel failed"},  // which stands there twice
        {0x98112A0F, "IO: redundant line is interrupted"},
        {0x98114000, "NC: motion controller is not started"},
        {0x98114040, "NCChn: channel does not exist"},
        {0x98114080, "NcChn: path has no length"},
        {0x98114155, "NcTrafo: result is not a number"},
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

TEST(Describe, prefersTheLibrarysTextAndThenTheTable) {
    scriptedResult = S_FALSE;
    EXPECT_EQ(describe(E_FAIL), "");
    scriptedResult = E_FAIL;
    EXPECT_EQ(describe(E_FAIL), "E_FAIL: Unspecified error");
    EXPECT_FALSE(describe(static_cast<HRESULT>(0x80070002)).empty());
    EXPECT_NE(describe(static_cast<HRESULT>(0x80070002)), unspecified);  // but the system's
}

}  // namespace
