/// The requests of the server's clients.
#include "extension/Diagnostics.h"
#include "extension/ZrHmiEventLogger.h"

using ZrHmiSrv::Command;
using ZrHmiSrv::CommandGroup;
using ZrHmiSrv::Context;
using ZrHmiSrv::ErrorValue;
using ZrHmiSrv::ResultPair;
using ZrHmiSrv::Value;
using ZrHmiSrv::ValueType;

namespace ZrHmiEventLogger {

namespace {

constexpr const char* unknownCommandText =
    "Unkown command. Command handler missing. Please check the version of the extension.";

void answer(Command& command, ErrorValue code) {
    command.set_extension_result(static_cast<unsigned>(code));
}

}  // namespace

ResultPair ZrHmiEventLogger::handle(const Context&, CommandGroup& commands) {
    for (auto command = commands.begin_vector(); command != commands.end_vector(); ++command) {
        try {
            // A client that asks for much does not hold up the end.
            if (stopping)
                answer(*command, ErrorValue::operation_failed);
            else
                execute(*command);
        } catch (...) {
            reportFailure();
            answer(*command, ErrorValue::operation_failed);
        }
    }
    return ErrorValue::success;
}

void ZrHmiEventLogger::execute(Command& command) {
    const std::string_view name = command.mapping();
    const auto onTarget = [&](const Value* targetName, HRESULT (TargetSystem::*operation)()) {
        const auto target = targetName && targetName->type() == ValueType::string
                                ? targetSystems.find(targetName->get_text().view())
                                : nullptr;
        if (!target)
            return answer(command, ErrorValue::unknown_target_system);
        answer(command, FAILED((*target.*operation)()) ? ErrorValue::operation_failed
                                                       : ErrorValue::success);
    };

    if (name == "Diagnostics") {
        reportDiagnostics(command.read_value());
        answer(command, ErrorValue::success);
    } else if (name == "ListEnabledTargetSystems") {
        listEnabledTargetSystems(command.read_value());
        answer(command, ErrorValue::success);
    } else if (name == "ForceReconnect") {
        onTarget(&command.write_value(), &TargetSystem::RequestReconnect);
    } else if (name == "ClearLoggedEvents") {
        onTarget(command.write_value().lookup("targetName"), &TargetSystem::ClearLoggedEvents);
    } else {
        answer(command, ErrorValue::unknown_command);
        command.set_result_string(unknownCommandText);
    }
}

void ZrHmiEventLogger::reportDiagnostics(Value& diagnostics) const {
    Value entries(ValueType::map);
    for (const Kept& kept : targetSystems.copy())
        entries.insert(kept.target->name(), diagnosticsOf(*kept.target));
    Value all(ValueType::structure);
    all.insert("TARGET_SYSTEMS", std::move(entries));
    diagnostics = std::move(all);
}

void ZrHmiEventLogger::listEnabledTargetSystems(Value& names) const {
    Value enabled(ValueType::vector);
    for (const Kept& kept : targetSystems.copy())
        if (const auto current = targetSystems.find(kept.target->name().view());
            current && !current->IsDisabled())
            enabled << current->name();
    names = std::move(enabled);
}

}  // namespace ZrHmiEventLogger
