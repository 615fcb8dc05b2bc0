#include "events/DiagnosticMessage.h"

#include <array>
#include <cassert>

using ZrHmiSrv::Message;
using ZrHmiSrv::Severity;
using ZrHmiSrv::Text;
using ZrHmiSrv::Timestamp;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

Message diagnosticMessage(Text name, std::initializer_list<Value> parameters, Severity severity) {
    static const std::array<Text, 9> keys{
        Text::constant("0"), Text::constant("1"), Text::constant("2"),
        Text::constant("3"), Text::constant("4"), Text::constant("5"),
        Text::constant("6"), Text::constant("7"), Text::constant("8")};
    assert(parameters.size() <= keys.size());
    Value map(ValueType::structure);
    map.reserve(parameters.size());
    auto key = keys.begin();
    for (const Value& parameter : parameters)
        map.append(*key++, Value(parameter));

    Message message;
    message.set_name(std::move(name));
    message.set_severity(severity);
    message.set_time_raised(Timestamp::now());
    message.set_payload(std::move(map));
    return message;
}

}  // namespace ZrHmiEventLogger
