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
    const auto asked = std::make_shared<const Asked>(
        Asked{ConfirmationBody::ofMany(request), request.user, request.peer, request.client});
    const auto& wishes = asked->body.wishes;
    if (wishes.empty())
        return reply([] { return Response::json(json::array()); });
    std::map<std::string, std::vector<std::size_t>> byTarget;
    for (std::size_t i = 0; i < wishes.size(); ++i)
        byTarget[targetOf(wishes[i].id)].push_back(i);
    const auto batch = std::make_shared<ConfirmationBatch>(
        wishes.size(), [asked, reply](const ConfirmationBatch::Outcomes& outcomes) {
            reply([&] { return answerTo(asked->body, outcomes); });
        });
    const auto isUp = [waiting = std::weak_ptr(batch)] {
        if (const auto late = waiting.lock())
            late->expire();
    };
    if (!deadlines.add(Deadlines::Clock::now() + service.patience(), isUp))
        throw RequestError(503, "too many confirmations are under way");
    for (auto& [target, indexes] : byTarget)
        ask(target, asked, std::move(indexes), batch);
}

/// Each outcome is audited when it comes, also when nobody waits for it any more.
void ConfirmationsResource::ask(const std::string& target,
                                const std::shared_ptr<const Asked>& asked,
                                std::vector<std::size_t> indexes,
                                const std::shared_ptr<ConfirmationBatch>& batch) noexcept {
    const auto settle = [this, asked, batch](std::size_t i, ConfirmationOutcome outcome) noexcept {
        record(*asked, asked->body.wishes[i], outcome);
        batch->set(i, std::move(outcome));
    };
    try {
        lanes.run({Lane::confirmations, target},
                  {[this, asked, batch, settle, indexes] {
                       for (const std::size_t i : indexes) {
                           if (asked->client && asked->client->isOver())
                               settle(i, {503, {}, "not asked for: the client has gone"});
                           else if (batch->isOver())
                               settle(i, {503, {}, "not asked for: the time was up"});
                           else
                               settle(i, confirm(asked->body.wishes[i], asked->body.asker));
                       }
                   },
                   [settle, indexes](const std::string& why) {
                       for (const std::size_t i : indexes)
                           settle(i, {503, {}, why});
                   }});
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("confirmations failed: ") + exception.what());
        for (const std::size_t i : indexes)
            settle(i, {500, {}, {}});
    }
}

Response ConfirmationsResource::answerTo(const ConfirmationBody& body,
                                         const ConfirmationBatch::Outcomes& outcomes) {
    json::array answers;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        json::object answer = answerOf(outcomes[i]);
        answer.emplace("id", idJson(body.wishes[i].id));
        answer.emplace("status", outcomes[i].status);
        answers.push_back(std::move(answer));
    }
    Response response = Response::json(std::move(answers));
    response.audited = true;
    return response;
}

void ConfirmationsResource::record(const Asked& asked, const ConfirmationWish& wish,
                                   const ConfirmationOutcome& outcome) const noexcept {
    try {
        json::object what{{"id", idJson(wish.id)}};
        if (wish.timeRaised)
            what.emplace("timeRaised", isoTime(*wish.timeRaised));
        if (!asked.body.asker.comment.empty())
            what.emplace("comment", toJson(std::string_view(asked.body.asker.comment)));
        audit.record({asked.user, asked.peer, "POST /api/confirmations " + json::serialize(what),
                      outcome.status, json::serialize(answerOf(outcome))});
    } catch (const std::exception& exception) {
        log(LogLevel::error, std::string("a confirmation is not audited: ") + exception.what());
    }
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
