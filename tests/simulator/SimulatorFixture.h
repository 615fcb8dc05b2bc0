#pragma once

#include <string>

#include <boost/json/value.hpp>
#include <gtest/gtest.h>

#include "platform/Text.h"
#include "simulator/Control.h"
#include "simulator/RecordingSink.h"

inline constexpr const char* fillerNetId = "5.10.20.30.1.1";
inline constexpr const char* packerNetId = "5.10.20.40.1.1";
/// The one event class of the filler, with the alarms 7 (needs a confirmation) and 8 (does not)
/// and the message 20.
inline constexpr const char* pumpClass = "{0000ABCD-1111-2222-3333-444455556666}";
inline constexpr GUID pumpClassId{
    0x0000ABCD, 0x1111, 0x2222, {0x33, 0x33, 0x44, 0x44, 0x55, 0x55, 0x66, 0x66}};

constexpr HRESULT protocolError(std::uint32_t code) {
    return static_cast<HRESULT>(0x98110000u + code);
}

struct ControlAnswer {
    int result;
    boost::json::value body;
};
ControlAnswer loadPlant(const std::string& plant);
ControlAnswer apply(const std::string& netId, const std::string& actions);
ControlAnswer status(const std::string& netId);

/// A client's logger with a sink of its own. The members answer what the proxy answered.
class Client {
public:
    using Logger = ZrAtlCom::ComPtr<ZrEventLoggerFnxProxyLib::IZrEventLogger4>;

    Client();
    ~Client();

    HRESULT connect(const std::string& netId = fillerNetId);
    bool isConnected();
    HRESULT advise();
    HRESULT unadvise();
    HRESULT setTimeout(ULONG milliseconds);
    std::vector<RecordingSink::Alarm> activeAlarms();

    RecordingSink sink;  ///< outlives the logger, which refers to it
    Logger logger;

private:
    DWORD cookie = 0;
};

/// Runs with the plant "filler" (see above) and an empty runtime "packer".
class SimulatorFixture : public testing::Test {
protected:
    SimulatorFixture();
    ~SimulatorFixture() override;

    /// Applies actions to the filler, in which ' stands for " and CLASS for the pump class.
    void apply(std::string actions);
    boost::json::object status(const std::string& netId = fillerNetId);
    std::uint64_t calls(const std::string& operation, const std::string& netId = fillerNetId);
    std::int64_t liveObjects(const std::string& netId = fillerNetId);
    /// Until a call of the operation has been entered `count` times in all.
    void waitForCalls(const std::string& operation, std::uint64_t count);
};

std::string withQuotes(std::string text);
