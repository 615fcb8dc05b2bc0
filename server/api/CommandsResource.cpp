#include "server/api/CommandsResource.h"

#include <vector>

#include <boost/json/array.hpp>

#include "server/json/ParseJson.h"
#include "server/json/ValueJson.h"

namespace hmi {

namespace json = boost::json;
using ZrHmiSrv::Command;
using ZrHmiSrv::CommandGroup;

namespace {

constexpr std::size_t maxCommands = 1000;

Command readCommand(const json::value& item) {
    const json::object* const fields = item.if_object();
    const json::value* const name = fields ? fields->if_contains("command") : nullptr;
    if (!name || !name->is_string())
        throw RequestError(400, "a command is an object with the text \"command\"");
    const json::value* const input = fields->if_contains("writeValue");
    if (fields->size() != (input ? 2U : 1U))
        throw RequestError(400, "a command has no fields but \"command\" and \"writeValue\"");
    const ZrHmiSrv::Text text{std::string_view(name->get_string())};
    return Command(text, text, input ? fromJson(*input) : ZrHmiSrv::Value());
}

std::vector<Command> readCommands(const std::string& body) {
    try {
        const json::value items = parseJson(body);
        if (!items.is_array() || items.get_array().size() > maxCommands)
            throw RequestError(400, "commands come as an array of at most 1000");
        std::vector<Command> commands;
        for (const json::value& item : items.get_array())
            commands.push_back(readCommand(item));
        return commands;
    } catch (const JsonError& error) {
        throw RequestError(400, error.what());
    }
}

/// The target system that a command is about, as far as its input tells; else empty.
std::string targetNamedBy(const Command& command) {
    const ZrHmiSrv::Value& input = command.write_value();
    const ZrHmiSrv::Value* const name = input.is_map() ? input.lookup("targetName") : &input;
    return name && name->type() == ZrHmiSrv::ValueType::string ? name->get_string() : std::string();
}

/// A group counts for the first target system that it is about.
Place placeOf(const Request& request) {
    request.target.query.allowOnly({});
    for (const Command& command : readCommands(request.body)) {
        if (std::string target = targetNamedBy(command); !target.empty())
            return {Lane::commands, std::move(target)};
    }
    return {Lane::commands};
}

}  // namespace

void CommandsResource::addRoutes(Router& router) {
    router.add(Method::post, "/api/commands", placeOf, [this](const auto& r) { return handle(r); });
}

Response CommandsResource::handle(const Request& request) {
    CommandGroup commands(readCommands(request.body));
    const auto answer = extension.handle(commands);
    if (!answer)
        return Response::error(503, "the extension handles no commands");
    if (!answer->succeeded())
        return Response::error(500, answer->text().view(), answer->result());
    json::array results;
    for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
        results.emplace_back(json::object{{"command", toJson(std::string_view(command->name()))},
                                          {"extensionResult", command->extension_result()},
                                          {"resultString", toJson(command->result().text().view())},
                                          {"readValue", toJson(command->read_value())}});
    }
    return Response::json(std::move(results));
}

}  // namespace hmi
