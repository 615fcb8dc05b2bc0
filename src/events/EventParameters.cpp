#include "events/EventParameters.h"

#include <cstddef>
#include <optional>
#include <span>

#include <boost/container/small_vector.hpp>

#include "events/EventSource.h"
#include "events/MalformedEvent.h"
#include "events/ProxyValue.h"
#include "events/TextPool.h"
#include "platform/Text.h"
#include "targetsystem/proxy/CAtlException.h"

using namespace ZrEventLoggerFnxProxyLib;
using ZrAtlCom::check;
using ZrHmiSrv::Binary;
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
    constexpr std::size_t usualSize = 256;
    boost::container::small_vector<std::byte, usualSize> block(
        static_cast<std::size_t>(sizeOf(layout)));
    context.proceed();
    check(arguments.GetBlock(reinterpret_cast<BYTE*>(block.data()),
                             static_cast<ULONG>(block.size())));
    const std::span<const std::byte> bytes(block.data(), block.size());
    const auto types = bytes.subspan(part(layout.typesOffset), part(layout.typesSize));
    const auto data = bytes.subspan(part(layout.dataOffset), part(layout.dataSize));
    parameters.append(keys().types, texts().of(types));
    parameters.append(keys().data, Binary(data));
}

/// Alarms and messages say how many arguments they have; the block is optional.
template <class LiveEvent>
void addArguments(const EventContext& context, Value& parameters, LiveEvent& source) {
    const ULONG count = context.read(source, &LiveEvent::get_ArgumentCount);
    parameters.append(keys().numArguments, static_cast<double>(count));
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
        parameters.append(keys().numArguments, 0);
        return;
    }
    const ArgumentBlockLayout layout = readLayout(context, parameters, *arguments);
    parameters.append(keys().numArguments, static_cast<double>(layout.count));
    addBlock(context, parameters, *arguments, layout);
}

template <class Source>
Value parametersOf(const EventContext& context, Source& source) {
    Value parameters(ValueType::structure);
    parameters.reserve(parameterCount);
    parameters.append(keys().targetName, context.targetName);
    parameters.append(keys().eventClass, texts().of(context.read(source, &IZrEvent::get_EventClass)));
    parameters.append(keys().eventId,
                      static_cast<double>(context.read(source, &IZrEvent::get_EventId)));
    const EventSource origin(context, source);
    if (origin.id)
        parameters.append(keys().sourceId, static_cast<double>(*origin.id));
    if (origin.name)
        parameters.append(keys().sourceName, *origin.name);
    if (origin.guid)
        parameters.append(keys().sourceGuid, *origin.guid);
    if (const auto json = context.query<IZrJsonAttribute>(source)) {
        context.proceed();
        ScopedBstr received;
        check(json->get_JsonAttribute(received.put()));
        parameters.append(keys().jsonAttribute, texts().of(received.get()));
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
