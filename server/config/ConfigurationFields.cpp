#include "server/config/ConfigurationFields.h"

#include "server/json/IsoTime.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

ZrHmiSrv::Value configurationValue(const json::value& configuration) {
    const json::object& fields = configuration.get_object();
    if (fields.empty())
        return {};
    ZrHmiSrv::Value value = fromJson(configuration);
    if (const json::value* const timeout = fields.if_contains("TIMEOUT");
        timeout && timeout->is_string()) {
        if (const auto span = parseIsoDuration(timeout->get_string()))
            value.insert_or_update("TIMEOUT", *span);
    }
    if (!fields.contains("LIMIT_EVENT_COUNT"))
        value.insert_or_update("LIMIT_EVENT_COUNT", defaultEventLimit);
    return value;
}

}  // namespace hmi
