#pragma once

#include <vector>

#include "host/Result.h"
#include "host/Value.h"

namespace ZrHmiSrv {

/// One request of a client: what it sent, and what it gets back.
class Command {
public:
    Command(Text name, Text mapping, Value write_value = {}) noexcept
        : client_name(std::move(name)),
          mapped_name(std::move(mapping)),
          input(std::move(write_value)) {}

    /// The name under which the client knows the command.
    const char* name() const noexcept { return client_name.c_str(); }
    /// The name of the command within the extension.
    const char* mapping() const noexcept { return mapped_name.c_str(); }
    const Value& write_value() const noexcept { return input; }
    Value& read_value() noexcept { return output; }
    const Value& read_value() const noexcept { return output; }

    void set_extension_result(unsigned code) noexcept { code_ = code; }
    unsigned extension_result() const noexcept { return code_; }
    void set_result_string(const char* text) { text_ = Text(text); }
    ResultPair result() const { return {static_cast<ErrorValue>(code_), text_}; }

private:
    Text client_name;
    Text mapped_name;
    Value input;
    Value output;
    unsigned code_ = 0;
    Text text_;
};

template <class T>
using VectorIterator = typename std::vector<T>::iterator;

/// Commands that a client sent together; they are handled in order.
class CommandGroup {
public:
    CommandGroup() = default;
    explicit CommandGroup(std::vector<Command> commands) noexcept : commands(std::move(commands)) {}
    VectorIterator<Command> begin_vector() noexcept { return commands.begin(); }
    VectorIterator<Command> end_vector() noexcept { return commands.end(); }

private:
    std::vector<Command> commands;
};

}  // namespace ZrHmiSrv
