/// Events whose arguments a logger describes as it likes: what is kept of them is what it described.
#include <cstdlib>

#include <fuzzer/FuzzedDataProvider.h>

#include "tests/events/TargetWorld.h"

namespace {

using namespace bridge_test;

FakeEventData eventData(FuzzedDataProvider& input) {
    const auto number = [&] { return input.ConsumeIntegral<LONG>(); };
    const auto small = [&] { return input.ConsumeIntegralInRange<LONG>(-1, 40); };
    FakeEventData data;
    if (input.ConsumeBool())
        data.layout = {small(), small(), small(), small(), small()};
    else if (input.ConsumeBool())
        data.layout = {number(), number(), number(), number(), number()};
    data.argumentCount = data.layout && input.ConsumeBool()
                             ? static_cast<ULONG>(data.layout->count)
                             : input.ConsumeIntegral<ULONG>();
    data.cleared = input.ConsumeIntegral<std::uint64_t>();
    data.confirmationState = input.ConsumeIntegral<ULONG>();
    data.severity = input.ConsumeIntegral<ULONG>();
    data.type = input.ConsumeBool() ? fnx::LoggedEventType::alarm : fnx::LoggedEventType::message;
    if (input.ConsumeBool())
        data.json = input.ConsumeRandomLengthString(64);
    if (input.ConsumeBool())
        data.sourceName = input.ConsumeRandomLengthString(64);
    data.block = input.ConsumeRemainingBytes<BYTE>();
    return data;
}

void expect(bool condition) {
    if (!condition)
        std::abort();
}

void expectAsDescribed(const ZrHmiSrv::Value& parameters, const FakeEventData& data) {
    const auto* types = parameters.lookup("types");
    const auto* content = parameters.lookup("data");
    expect((types != nullptr) == (content != nullptr));
    if (!types)
        return;
    expect(types->get_binary().size() == static_cast<std::size_t>(data.layout.value().typesSize));
    expect(content->get_binary().size() == static_cast<std::size_t>(data.layout->dataSize));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
    FuzzedDataProvider input(bytes, size);
    const FakeEventData data = eventData(input);
    TargetWorld world(10);
    FakeEvent& event = world.source(1);
    event.data = data;
    world.logger.logged = {&event};
    world.logger.active = {&event};
    world.import();
    world.sent(event);
    world.raised(event);
    world.cleared(event, VARIANT_TRUE);
    for (const ZrHmiSrv::Event& stored : world.store.eventsOldestFirst()) {
        const ZrHmiSrv::Value& payload = stored.payload();
        const bool isAlarm = payload.type() == ZrHmiSrv::ValueType::alarm;
        expectAsDescribed(isAlarm ? payload.get_alarm().payload()
                                  : payload.get_message().parameters(),
                          data);
    }
    return 0;
}
