// What a command has to say beside its result.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "exit_codes.h"

namespace tools {

enum class Severity { Info, Warning, Error };

constexpr const char* NameOf(Severity severity) {
    constexpr const char* kNames[] = {"info", "warning", "error"};
    return kNames[static_cast<int>(severity)];
}

struct Message {
    Severity severity = Severity::Error;
    std::string text;
    std::string hint;                // what to do about it; may be empty
    std::string object;              // what it is about ("index:2"); may be empty
    std::optional<uint32_t> status;  // status of the library or Windows error code
};

// Something that was changed and needs a restart of `object` before it takes effect.
struct Pending {
    std::string object;
    std::string action;  // "driver_restart", "port_reset", ...
    std::string text;
};

// Ends a command: thrown from wherever the cause is known, reported by the frame.
struct CommandError {
    ExitCode exit = ExitCode::Failed;
    Message message;
};

}  // namespace tools
