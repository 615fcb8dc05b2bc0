#pragma once

#include <memory>
#include <string>
#include <vector>

#include "server/api/ConfirmationBody.h"
#include "server/confirmations/ConfirmationBatch.h"
#include "server/confirmations/Deadlines.h"
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
    void many(const Request& request, const LateReply& reply);
    void ask(const std::string& target, const std::shared_ptr<const ConfirmationBody>& body,
             std::vector<std::size_t> indexes, const std::shared_ptr<ConfirmationBatch>& batch,
             const std::shared_ptr<const Presence>& client) noexcept;
    Response answerTo(const Request& request, const ConfirmationBody& body,
                      const ConfirmationBatch::Outcomes& outcomes) const;
    ConfirmationOutcome confirm(const ConfirmationWish& wish,
                                const ConfirmationAsker& asker) noexcept;
    void record(const Request& request, const ConfirmationWish& wish, const std::string& comment,
                const ConfirmationOutcome& outcome) const;
    std::string targetOf(EventId id) const;

    ConfirmationService& service;
    const EventBook& book;
    WorkerLanes& lanes;
    const Audit& audit;
    Deadlines deadlines;  ///< last: it calls what stands above
};

}  // namespace hmi
