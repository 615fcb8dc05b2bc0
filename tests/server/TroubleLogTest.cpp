#include <algorithm>

#include <gmock/gmock.h>

#include "server/extension/TroubleLog.h"

using std::chrono::minutes;
using std::chrono::seconds;
using ZrHmiSrv::Message;

namespace hmi {

namespace {

Message report(const char* name, const char* target, const char* what) {
    Message message;
    message.set_name(name);
    message.parameters().insert("0", target);
    message.parameters().insert("1", what);
    return message;
}

TEST(TroubleLog, TellsOfEachChangeAndSumsUpWhatGoesOn) {
    TroubleLog trouble;
    TroubleLog::Clock::time_point now(std::chrono::hours(1));
    const auto pass = [&](const char* name, const char* target, const char* what) {
        Message message = report(name, target, what);
        const bool passed = trouble.pass(message, now);
        const auto* const repeated = message.parameters().lookup("repeated");
        EXPECT_TRUE(!repeated || static_cast<long long>(*repeated) == 119);
        return passed;
    };
    const char* const failed = "TARGET_SYSTEM_CONNECT_FAILED";
    testing::internal::CaptureStderr();
    std::size_t passed = 0;
    for (int tick = 0; tick < 241; ++tick, now += std::chrono::milliseconds(500)) {
        passed += pass(failed, "Filler", "0x98110007");
        passed += pass("CORVANE_EVENTLOGGER_ERROR", "Filler", "no route");
    }
    EXPECT_EQ(passed, 6U) << "at once, after one minute, after two";
    EXPECT_TRUE(pass(failed, "Filler", "0x98110745")) << "another reason";
    EXPECT_TRUE(pass(failed, "Packer", "0x98110007")) << "another target system";
    EXPECT_TRUE(pass("NEW_ALARM_RAISED", "Filler", "x"));
    EXPECT_TRUE(pass("NEW_ALARM_RAISED", "Filler", "x")) << "what is no trouble always passes";
    EXPECT_TRUE(pass("TARGET_SYSTEM_CONNECTED", "Filler", ""));
    EXPECT_TRUE(pass(failed, "Filler", "0x98110007")) << "lost again";
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 10) << log;
    EXPECT_THAT(log, testing::HasSubstr("Filler: TARGET_SYSTEM_CONNECT_FAILED 0x98110007 (and 119 "));
    EXPECT_THAT(log, testing::HasSubstr(" info Filler: connected"));
}

}  // namespace

}  // namespace hmi
