#pragma once

#include "server/confirmations/ConfirmationService.h"
#include "server/http/Router.h"
#include "server/lanes/WorkerLanes.h"
#include "server/users/Audit.h"

namespace hmi {

/// The confirmation of an alarm, and of many.
class ConfirmationsResource {
public:
    ConfirmationsResource(ConfirmationService& service, const EventBook& book, WorkerLanes& lanes,
                          const Audit& audit)
        : service(service), book(book), lanes(lanes), audit(audit) {}

    void addRoutes(Router& router);

private:
    Response one(const Request& request);
    Response many(const Request& request);
    ConfirmationOutcome confirm(const ConfirmationWish& wish,
                                const ConfirmationAsker& asker) noexcept;
    void record(const Request& request, const ConfirmationWish& wish, const std::string& comment,
                const ConfirmationOutcome& outcome) const;
    std::string targetOf(EventId id) const;

    ConfirmationService& service;
    const EventBook& book;
    WorkerLanes& lanes;
    const Audit& audit;
};

}  // namespace hmi
