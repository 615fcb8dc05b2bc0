#include "server/api/PageResource.h"

#include "server/api/PageFiles.h"

namespace hmi {

namespace {

std::string typeOf(std::string_view name) {
    if (name.ends_with(".html"))
        return "text/html; charset=utf-8";
    if (name.ends_with(".css"))
        return "text/css; charset=utf-8";
    return "text/javascript; charset=utf-8";
}

}  // namespace

void PageResource::addRoutes(Router& router) {
    for (const PageFile& file : pageFiles) {
        const std::string path =
            file.name == "index.html" ? "/" : "/page/" + std::string(file.name);
        router.add(Method::get, path, [file](const Request&) {
            Response response;
            response.contentType = typeOf(file.name);
            response.body = file.content;
            response.keepable = true;
            return response;
        });
    }
}

}  // namespace hmi
