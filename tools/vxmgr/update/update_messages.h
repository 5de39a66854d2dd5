// Errors that concern one port or adapter.
#pragma once

#include <optional>
#include <string>

#include "common/invocation.h"

namespace vxmgr {

// Ends the command.
[[noreturn]] inline void FailAt(const std::string& object, tools::ExitCode exit,
                                const std::string& text, const std::string& hint,
                                std::optional<uint32_t> status = {}) {
    throw tools::CommandError{exit, {tools::Severity::Error, text, hint, object, status}};
}

// The command goes on, or ends with an exit code of its own.
inline void Complain(tools::Invocation& invocation, const std::string& object,
                     const std::string& text, const std::string& hint,
                     std::optional<uint32_t> status = {}) {
    invocation.Add({tools::Severity::Error, text, hint, object, status});
}

inline void WarnAbout(tools::Invocation& invocation, const std::string& object,
                      const std::string& text, std::optional<uint32_t> status = {},
                      const std::string& hint = {}) {
    invocation.Add({tools::Severity::Warning, text, hint, object, status});
}

// What failed of several things that are read one after the other.
struct FailureTally {
    size_t failures = 0;
    tools::ExitCode first = tools::ExitCode::Done;

    void Add(tools::ExitCode exit) { first = failures++ == 0 ? exit : first; }
    // The first one's exit code when all failed.
    tools::ExitCode Of(size_t all) const {
        return failures != 0 && failures < all ? tools::ExitCode::Partial : first;
    }
};

}  // namespace vxmgr
