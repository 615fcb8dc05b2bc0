#include "server/api/ConfirmationsResource.h"

#include <map>
#include <memory>
#include <vector>

#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>

#include "server/Log.h"
#include "server/api/ConfirmationBody.h"
#include "server/confirmations/ConfirmationBatch.h"
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
    router.add(
        Method::post, "/api/confirmations",
        [](const Request&) { return Place{Lane::confirmations}; },
        [this](const Request& r) { return many(r); });
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

/// Each target system in its own place in the lane: one that hangs keeps its own alarms waiting.
Response ConfirmationsResource::many(const Request& request) {
    request.target.query.allowOnly({});
    const auto body = std::make_shared<const ConfirmationBody>(ConfirmationBody::ofMany(request));
    std::map<std::string, std::vector<std::size_t>> byTarget;
    for (std::size_t i = 0; i < body->wishes.size(); ++i)
        byTarget[targetOf(body->wishes[i].id)].push_back(i);
    const auto batch = std::make_shared<ConfirmationBatch>(body->wishes.size());
    for (auto& [target, indexes] : byTarget) {
        const auto each = std::make_shared<const std::vector<std::size_t>>(std::move(indexes));
        lanes.run({Lane::confirmations, target},
                  {[this, body, batch, each] {
                       for (const std::size_t i : *each)
                           batch->set(i, confirm(body->wishes[i], body->asker));
                   },
                   [batch, each](const std::string& why) {
                       for (const std::size_t i : *each)
                           batch->set(i, {503, {}, why});
                   }});
    }
    const auto outcomes = batch->await(service.patience());
    json::array answers;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        record(request, body->wishes[i], body->asker.comment, outcomes[i]);
        json::object answer = answerOf(outcomes[i]);
        answer.emplace("id", idJson(body->wishes[i].id));
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
