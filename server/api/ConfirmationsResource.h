#pragma once

#include "server/confirmations/ConfirmationService.h"
#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"

namespace hmi {

/// The confirmation of an alarm, and of many.
class ConfirmationsResource {
public:
    ConfirmationsResource(ConfirmationService& service, const EventBook& book, WorkerLanes& lanes)
        : service(service), book(book), lanes(lanes) {}

    void addRoutes(Router& router);

private:
    Response one(const Request& request);
    Response many(const Request& request);
    ConfirmationOutcome confirm(const ConfirmationWish& wish,
                                const ConfirmationAsker& asker) noexcept;
    std::string targetOf(EventId id) const;

    ConfirmationService& service;
    const EventBook& book;
    WorkerLanes& lanes;
};

}  // namespace hmi
