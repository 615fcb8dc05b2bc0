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
    /// Many that are asked for at a time, and by whom.
    struct Asked {
        ConfirmationBody body;
        std::string user;
        std::string peer;
        std::shared_ptr<const Presence> client;
    };

    void many(const Request& request, const LateReply& reply);
    void ask(const std::string& target, const std::shared_ptr<const Asked>& asked,
             std::vector<std::size_t> indexes,
             const std::shared_ptr<ConfirmationBatch>& batch) noexcept;
    static Response answerTo(const ConfirmationBody& body,
                             const ConfirmationBatch::Outcomes& outcomes);
    void record(const Asked& asked, const ConfirmationWish& wish,
                const ConfirmationOutcome& outcome) const noexcept;
    ConfirmationOutcome confirm(const ConfirmationWish& wish,
                                const ConfirmationAsker& asker) noexcept;
    std::string targetOf(EventId id) const;

    ConfirmationService& service;
    const EventBook& book;
    WorkerLanes& lanes;
    const Audit& audit;
    Deadlines deadlines;  ///< last: it calls what stands above
};

}  // namespace hmi
