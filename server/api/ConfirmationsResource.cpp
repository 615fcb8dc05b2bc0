#include "server/api/ConfirmationsResource.h"

#include <map>
#include <memory>
#include <vector>

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include "server/Log.h"
#include "server/json/EventJson.h"
#include "server/json/IsoTime.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;

namespace {

EventId idOf(const Request& request) {
    const auto id = EventId::parse(request.target.path[2]);
    if (!id)
        throw RequestError(404, "there is no such event");
    return *id;
}

json::value idJson(EventId id) {
    return id.kind == EventKind::alarm ? json::value(id.number) : json::value(id.text());
}

json::object answerOf(const ConfirmationOutcome& outcome) {
    json::object object;
    if (outcome.result)
        object.emplace("result", static_cast<std::uint32_t>(*outcome.result));
    object.emplace("text", toJson(std::string_view(outcome.text)));
    return object;
}

}  // namespace

void ConfirmationsResource::addRoutes(Router& router) {
    router.add(
        Method::post, "/api/events/*/confirm",
        [this](const Request& r) {
            return Place{Lane::confirmations, targetOf(idOf(r))};
        },
        [this](const Request& r) { return one(r); });
    router.addLate(Method::post, "/api/confirmations",
                   [this](const Request& r, const LateReply& reply) { many(r, reply); });
}

Response ConfirmationsResource::one(const Request& request) {
    request.target.query.allowOnly({});
    const ConfirmationBody body = ConfirmationBody::ofOne(request, idOf(request));
    const ConfirmationOutcome outcome = service.confirm(body.wishes.front(), body.asker);
    if (outcome.status == 200)
        return Response::json(answerOf(outcome));
    if (!outcome.current)
        return Response::error(outcome.status, outcome.text);
    return Response::json(
        {{"error", toJson(std::string_view(outcome.text))}, {"current", toJson(*outcome.current)}},
        outcome.status);
}

/// Each target system in its own place in the lane: one that hangs keeps its own alarms waiting,
/// and nobody's place is taken by who waits for the last answer.
void ConfirmationsResource::many(const Request& request, const LateReply& reply) {
    request.target.query.allowOnly({});
    const auto body = std::make_shared<const ConfirmationBody>(ConfirmationBody::ofMany(request));
    std::map<std::string, std::vector<std::size_t>> byTarget;
    for (std::size_t i = 0; i < body->wishes.size(); ++i)
        byTarget[targetOf(body->wishes[i].id)].push_back(i);
    const auto batch = std::make_shared<ConfirmationBatch>(
        body->wishes.size(),
        [this, &request, body, reply](const ConfirmationBatch::Outcomes& outcomes) {
            reply([&] { return answerTo(request, *body, outcomes); });
        });
    const auto isUp = [waiting = std::weak_ptr(batch)] {
        if (const auto late = waiting.lock())
            late->expire();
    };
    if (!deadlines.add(Deadlines::Clock::now() + service.patience(), isUp))
        throw RequestError(503, "too many confirmations are under way");
    for (auto& [target, indexes] : byTarget)
        ask(target, body, std::move(indexes), batch, request.client);
}

/// A client that has gone by then wants nothing confirmed any more.
void ConfirmationsResource::ask(const std::string& target,
                                const std::shared_ptr<const ConfirmationBody>& body,
                                std::vector<std::size_t> indexes,
                                const std::shared_ptr<ConfirmationBatch>& batch,
                                const std::shared_ptr<const Presence>& client) noexcept {
    try {
        lanes.run({Lane::confirmations, target},
                  {[this, body, batch, client, indexes] {
                       for (const std::size_t i : indexes) {
                           const bool isOver = client && client->isOver();
                           batch->set(i, isOver
                                             ? ConfirmationOutcome{503, {}, "the client has gone"}
                                             : confirm(body->wishes[i], body->asker));
                       }
                   },
                   [batch, indexes](const std::string& why) {
                       for (const std::size_t i : indexes)
                           batch->set(i, {503, {}, why});
                   }});
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("confirmations failed: ") + exception.what());
        for (const std::size_t i : indexes)
            batch->set(i, {500, {}, {}});
    }
}

Response ConfirmationsResource::answerTo(const Request& request, const ConfirmationBody& body,
                                         const ConfirmationBatch::Outcomes& outcomes) const {
    json::array answers;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        record(request, body.wishes[i], body.asker.comment, outcomes[i]);
        json::object answer = answerOf(outcomes[i]);
        answer.emplace("id", idJson(body.wishes[i].id));
        answer.emplace("status", outcomes[i].status);
        answers.push_back(std::move(answer));
    }
    Response response = Response::json(std::move(answers));
    response.audited = true;
    return response;
}

void ConfirmationsResource::record(const Request& request, const ConfirmationWish& wish,
                                   const std::string& comment,
                                   const ConfirmationOutcome& outcome) const {
    json::object asked{{"id", idJson(wish.id)}};
    if (wish.timeRaised)
        asked.emplace("timeRaised", isoTime(*wish.timeRaised));
    if (!comment.empty())
        asked.emplace("comment", toJson(std::string_view(comment)));
    audit.record({request.user, request.peer, "POST /api/confirmations " + json::serialize(asked),
                  outcome.status, json::serialize(answerOf(outcome))});
}

ConfirmationOutcome ConfirmationsResource::confirm(const ConfirmationWish& wish,
                                                   const ConfirmationAsker& asker) noexcept {
    try {
        return service.confirm(wish, asker);
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("a confirmation failed: ") + exception.what());
        return {500, {}, {}};
    }
}

/// Empty when there is no such event.
std::string ConfirmationsResource::targetOf(EventId id) const {
    const EventRecordPtr event = book.find(id);
    return event ? event->target : std::string();
}

}  // namespace hmi
