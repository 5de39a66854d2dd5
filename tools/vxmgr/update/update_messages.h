// Errors that concern one port or adapter.
#pragma once

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// Ends the command.
[[noreturn]] inline void FailAt(const std::string& object, ExitCode exit, const std::string& text,
                                const std::string& hint, std::optional<uint32_t> status = {}) {
    throw CommandError{exit, {Severity::Error, text, hint, object, status}};
}

// The command goes on, or ends with an exit code of its own.
inline void Complain(Invocation& invocation, const std::string& object, const std::string& text,
                     const std::string& hint, std::optional<uint32_t> status = {}) {
    invocation.Add({Severity::Error, text, hint, object, status});
}

inline void WarnAbout(Invocation& invocation, const std::string& object, const std::string& text,
                      std::optional<uint32_t> status = {}, const std::string& hint = {}) {
    invocation.Add({Severity::Warning, text, hint, object, status});
}

// What failed of several things that are read one after the other.
struct FailureTally {
    size_t failures = 0;
    ExitCode first = ExitCode::Done;

    void Add(ExitCode exit) { first = failures++ == 0 ? exit : first; }
    // The first one's exit code when all failed.
    ExitCode Of(size_t all) const {
        return failures != 0 && failures < all ? ExitCode::Partial : first;
    }
};

}  // namespace vxmgr
