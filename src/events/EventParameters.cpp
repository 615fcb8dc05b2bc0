#include "events/EventParameters.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "events/ProxyValue.h"
#include "platform/Mutex.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/Guid.h"
#include "targetsystem/proxy/ReceiveText.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::ComPtr;
using ZrAtlCom::guidText;
using ZrAtlCom::receiveText;
using ZrHmiSrv::Binary;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace keys {
const Text targetName("targetName");
const Text eventClass("eventClass");
const Text eventId("eventId");
const Text sourceId("sourceId");
const Text sourceName("sourceName");
const Text sourceGuid("sourceGuid");
const Text jsonAttribute("jsonAttribute");
const Text numArguments("numArguments");
const Text types("types");
const Text data("data");
}  // namespace keys

namespace {

constexpr std::int64_t maxArgumentBlock = 16 * 1024 * 1024;
constexpr std::size_t parameterCount = 10;

/// Events of a plant have few classes: those that were met lately share their text. Any thread; for
/// all threads in common, because not every compiler for Windows destroys what belongs to a thread
/// before it frees its memory.
class ClassTexts {
public:
    Text of(const GUID& eventClass) {
        Lock lock(mutex);
        Known& known = lately[eventClass.Data1 % lately.size()];
        if (known.text.empty() || known.eventClass != eventClass)
            known = {eventClass, Text(guidText(eventClass))};
        return known.text;
    }

private:
    struct Known {
        GUID eventClass{};
        Text text;
    };

    Mutex mutex;  ///< guards the texts, for one look at a time
    std::array<Known, 16> lately GUARDED_BY(mutex);
};

Text classText(const GUID& eventClass) {
    static ClassTexts texts;
    return texts.of(eventClass);
}

template <class Interface, class Source>
ComPtr<Interface> attribute(const EventContext& context, Source& source) {
    context.proceed();
    return attributeInterface<Interface>(source);
}

template <class Source, class Getter>
Text textOf(const EventContext& context, Source& source, Getter getter) {
    context.proceed();
    return Text(receiveText(getter, source));
}

bool hasSource(const EventContext& context, IZrEvent& source, SourceAttribute kind) {
    context.proceed();
    VARIANT_BOOL has = VARIANT_FALSE;
    check(source.HasSource(kind, &has));
    return has == VARIANT_TRUE;
}

/// What the proxy says of a block is not trusted: both parts must lie within it.
bool isWellFormed(const ArgumentBlockLayout& layout) {
    const std::int64_t size = std::int64_t{layout.typesSize} + layout.dataSize;
    const auto lies = [size](std::int64_t offset, std::int64_t length) {
        return offset >= 0 && length >= 0 && offset + length <= size;
    };
    return layout.count >= 0 && size <= maxArgumentBlock &&
           lies(layout.typesOffset, layout.typesSize) && lies(layout.dataOffset, layout.dataSize);
}

ArgumentBlockLayout readLayout(const EventContext& context, IZrEventArguments& arguments) {
    context.proceed();
    ArgumentBlockLayout layout{};
    check(arguments.GetLayout(&layout));
    if (!isWellFormed(layout))
        check(E_INVALIDARG);
    return layout;
}

void addBlock(const EventContext& context, Value& parameters, IZrEventArguments& arguments,
              const ArgumentBlockLayout& layout) {
    const auto part = [](LONG value) { return static_cast<std::size_t>(value); };
    const std::size_t size = part(layout.typesSize) + part(layout.dataSize);
    if (layout.count == 0 || size == 0)
        return;
    std::vector<std::byte> block(size);
    context.proceed();
    check(arguments.GetBlock(reinterpret_cast<BYTE*>(block.data()), static_cast<ULONG>(size)));
    const std::span<const std::byte> bytes(block);
    parameters.insert(keys::types,
                      Binary(bytes.subspan(part(layout.typesOffset), part(layout.typesSize))));
    parameters.insert(keys::data,
                      Binary(bytes.subspan(part(layout.dataOffset), part(layout.dataSize))));
}

/// Alarms and messages say how many arguments they have; the block is optional.
template <class LiveEvent>
void addArguments(const EventContext& context, Value& parameters, LiveEvent& source) {
    const ULONG count = context.read(source, &LiveEvent::get_ArgumentCount);
    parameters.insert(keys::numArguments, static_cast<double>(count));
    const auto arguments = context.query<IZrEventArguments>(source);
    if (!arguments)
        return;
    const ArgumentBlockLayout layout = readLayout(context, *arguments);
    if (static_cast<ULONG>(layout.count) != count)
        check(E_INVALIDARG);
    addBlock(context, parameters, *arguments, layout);
}

/// A logged event says so only through its argument block.
void addArguments(const EventContext& context, Value& parameters, IZrLoggedEvent& source) {
    const auto arguments = attribute<IZrEventArguments>(context, source);
    if (!arguments) {
        parameters.insert(keys::numArguments, 0);
        return;
    }
    const ArgumentBlockLayout layout = readLayout(context, *arguments);
    parameters.insert(keys::numArguments, static_cast<double>(layout.count));
    addBlock(context, parameters, *arguments, layout);
}

template <class Source>
Value parametersOf(const EventContext& context, Source& source) {
    Value parameters(ValueType::structure);
    parameters.reserve(parameterCount);
    parameters.insert(keys::targetName, context.targetName);
    parameters.insert(keys::eventClass, classText(context.read(source, &IZrEvent::get_EventClass)));
    parameters.insert(keys::eventId,
                      static_cast<double>(context.read(source, &IZrEvent::get_EventId)));
    if (hasSource(context, source, SourceAttribute::id))
        parameters.insert(keys::sourceId,
                          static_cast<double>(context.read(source, &IZrEvent::get_SourceId)));
    if (hasSource(context, source, SourceAttribute::name))
        parameters.insert(keys::sourceName, textOf(context, source, &IZrEvent::get_SourceName));
    if (hasSource(context, source, SourceAttribute::guid))
        parameters.insert(keys::sourceGuid,
                          Text(guidText(context.read(source, &IZrEvent::get_SourceGuid))));
    if (const auto json = attribute<IZrJsonAttribute>(context, source))
        parameters.insert(keys::jsonAttribute,
                          textOf(context, *json, &IZrJsonAttribute::get_JsonAttribute));
    addArguments(context, parameters, source);
    return parameters;
}

}  // namespace

Value eventParameters(const EventContext& context, IZrAlarm& source) {
    return parametersOf(context, source);
}

Value eventParameters(const EventContext& context, IZrMessage& source) {
    return parametersOf(context, source);
}

Value eventParameters(const EventContext& context, IZrLoggedEvent& source) {
    return parametersOf(context, source);
}

}  // namespace ZrHmiEventLogger
