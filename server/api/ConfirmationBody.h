#pragma once

#include <vector>

#include "server/confirmations/ConfirmationService.h"
#include "server/http/Request.h"
#include "server/http/Response.h"

namespace hmi {

/// What the body of a request for confirmations asks for.
struct ConfirmationBody {
    /// Of one alarm, whose id the address names. Throws RequestError 400.
    static ConfirmationBody ofOne(const Request& request, EventId id);
    /// Of at most 1,000 alarms. Throws RequestError 400.
    static ConfirmationBody ofMany(const Request& request);

    std::vector<ConfirmationWish> wishes;
    ConfirmationAsker asker;
};

}  // namespace hmi
