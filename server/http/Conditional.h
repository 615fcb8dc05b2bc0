#pragma once

#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// Fits an answer to what the client has and takes: 304 when it holds the same already, gzip when
/// it can unpack that. Takes time with the size of the body, so on a worker.
void fit(const Request& request, Response& response);

}  // namespace hmi
