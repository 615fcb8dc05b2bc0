#include "server/api/TargetsResource.h"

#include <boost/json/array.hpp>

#include "server/json/TargetJson.h"

namespace hmi {

void TargetsResource::addRoutes(Router& router) {
    router.add(Method::get, "/api/targets", [this](const Request& request) {
        request.target.query.allowOnly({});
        boost::json::array targets;
        for (const auto& target : book.all())
            targets.push_back(toJson(*target));
        return Response::json(std::move(targets));
    });
}

}  // namespace hmi
