#include "server/http/Response.h"

#include <boost/json/serialize.hpp>

#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

Response Response::json(const json::value& value, unsigned status) {
    Response response;
    response.status = status;
    response.body = json::serialize(value);
    return response;
}

Response Response::error(unsigned status, std::string_view text,
                         std::optional<ZrHmiSrv::ErrorValue> result) {
    json::object body{{"error", toJson(text)}};
    if (result)
        body["result"] = static_cast<std::uint32_t>(*result);
    return json(body, status);
}

}  // namespace hmi
