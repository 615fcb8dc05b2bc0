#include "events/EventParameters.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "events/EventSource.h"
#include "events/MalformedEvent.h"
#include "events/ProxyValue.h"
#include "platform/Mutex.h"
#include "targetsystem/proxy/CAtlException.h"
#include "targetsystem/proxy/Guid.h"
#include "targetsystem/proxy/ReceiveText.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrAtlCom::guidText;
using ZrAtlCom::receiveText;
using ZrHmiSrv::Binary;
using ZrHmiSrv::Text;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

const ParameterKeys& keys() {
    static const ParameterKeys all;
    return all;
}

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

std::int64_t sizeOf(const ArgumentBlockLayout& layout) {
    return std::int64_t{layout.typesSize} + layout.dataSize;
}

bool isRead(const ArgumentBlockLayout& layout) {
    return layout.count > 0 && sizeOf(layout) > 0;
}

/// What the proxy says of a block is not trusted: both parts must lie within one that is read.
bool isWellFormed(const ArgumentBlockLayout& layout) {
    const std::int64_t size = sizeOf(layout);
    const auto lies = [size](std::int64_t offset, std::int64_t length) {
        return offset >= 0 && offset + length <= size;
    };
    return layout.count >= 0 && layout.typesSize >= 0 && layout.dataSize >= 0 &&
           size <= maxArgumentBlock &&
           (!isRead(layout) || (lies(layout.typesOffset, layout.typesSize) &&
                                lies(layout.dataOffset, layout.dataSize)));
}

[[noreturn]] void refuse(const Value& parameters) {
    throw MalformedEvent(
        parameters.lookup(keys().eventClass.view())->get_string(),
        static_cast<std::uint32_t>(static_cast<double>(*parameters.lookup(keys().eventId.view()))));
}

/// `parameters`: what is known so far of the event whose arguments they are.
ArgumentBlockLayout readLayout(const EventContext& context, const Value& parameters,
                               IZrEventArguments& arguments) {
    context.proceed();
    ArgumentBlockLayout layout{};
    check(arguments.GetLayout(&layout));
    if (!isWellFormed(layout))
        refuse(parameters);
    return layout;
}

void addBlock(const EventContext& context, Value& parameters, IZrEventArguments& arguments,
              const ArgumentBlockLayout& layout) {
    const auto part = [](LONG value) { return static_cast<std::size_t>(value); };
    if (!isRead(layout))
        return;
    std::vector<std::byte> block(static_cast<std::size_t>(sizeOf(layout)));
    context.proceed();
    check(arguments.GetBlock(reinterpret_cast<BYTE*>(block.data()),
                             static_cast<ULONG>(block.size())));
    const std::span<const std::byte> bytes(block);
    parameters.insert(keys().types,
                      Binary(bytes.subspan(part(layout.typesOffset), part(layout.typesSize))));
    parameters.insert(keys().data,
                      Binary(bytes.subspan(part(layout.dataOffset), part(layout.dataSize))));
}

/// Alarms and messages say how many arguments they have; the block is optional.
template <class LiveEvent>
void addArguments(const EventContext& context, Value& parameters, LiveEvent& source) {
    const ULONG count = context.read(source, &LiveEvent::get_ArgumentCount);
    parameters.insert(keys().numArguments, static_cast<double>(count));
    const auto arguments = context.query<IZrEventArguments>(source);
    if (!arguments)
        return;
    const ArgumentBlockLayout layout = readLayout(context, parameters, *arguments);
    if (static_cast<ULONG>(layout.count) != count)
        refuse(parameters);
    addBlock(context, parameters, *arguments, layout);
}

/// A logged event says so only through its argument block.
void addArguments(const EventContext& context, Value& parameters, IZrLoggedEvent& source) {
    const auto arguments = context.query<IZrEventArguments>(source);
    if (!arguments) {
        parameters.insert(keys().numArguments, 0);
        return;
    }
    const ArgumentBlockLayout layout = readLayout(context, parameters, *arguments);
    parameters.insert(keys().numArguments, static_cast<double>(layout.count));
    addBlock(context, parameters, *arguments, layout);
}

template <class Source>
Value parametersOf(const EventContext& context, Source& source) {
    Value parameters(ValueType::structure);
    parameters.reserve(parameterCount);
    parameters.insert(keys().targetName, context.targetName);
    parameters.insert(keys().eventClass, classText(context.read(source, &IZrEvent::get_EventClass)));
    parameters.insert(keys().eventId,
                      static_cast<double>(context.read(source, &IZrEvent::get_EventId)));
    const EventSource origin(context, source);
    if (origin.id)
        parameters.insert(keys().sourceId, static_cast<double>(*origin.id));
    if (origin.name)
        parameters.insert(keys().sourceName, Text(*origin.name));
    if (origin.guid)
        parameters.insert(keys().sourceGuid, Text(*origin.guid));
    if (const auto json = context.query<IZrJsonAttribute>(source)) {
        context.proceed();
        parameters.insert(keys().jsonAttribute,
                          Text(receiveText(&IZrJsonAttribute::get_JsonAttribute, *json)));
    }
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
