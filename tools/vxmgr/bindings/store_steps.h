// What a change does, one row per store and target: a row that fails leaves the others standing.
#pragma once

#include <string>
#include <vector>

#include "common/invocation.h"
#include "hxmgtapi.h"

namespace vxmgr {

enum class Outcome { Done, Planned, Unchanged, Pending, Failed };

// What it means that the driver does not know a target: wait for it, or fail.
enum class AwayTarget { Pending, Failed };

inline constexpr char kInRegistry[] = "registry";
inline constexpr char kLive[] = "live";

class Steps {
  public:
    Steps(tools::Invocation& invocation, std::string object)
        : invocation_(invocation), object_(std::move(object)) {}

    // Planned instead of done in a dry run.
    void Done(const char* store, const tools::Wwn& target, const std::string& what);
    void Add(const char* store, const tools::Wwn& target, Outcome outcome, const std::string& what);
    // By the status: done, or failed and reported.
    void Tried(const char* store, const tools::Wwn& target, HX_STATUS status,
               const std::string& what);
    void Fail(const char* store, const tools::Wwn& target, tools::ExitCode exit,
              const std::string& what, const std::string& hint);

    // why: "the link is down", or the like.
    void Away(const tools::Wwn& target, AwayTarget away, const char* why);
    // The whole store was written, or would be, which makes no row.
    void StoreWritten();

    // Puts the rows into the result; the exit code of the whole.
    tools::ExitCode Finish();

  private:
    void AddRow(const char* store, const tools::Wwn& target, Outcome outcome,
                const std::string& what, HX_STATUS status);

    tools::Invocation& invocation_;
    const std::string object_;
    std::vector<tools::Record> rows_;
    size_t registryRows_ = 0;  // they come before the others
    size_t failures_ = 0;
    bool anythingToDo_ = false;
    bool stored_ = false;  // something was written to the registry
    bool live_ = false;    // and something tried in the driver
    bool behind_ = false;  // where not everything took effect
    tools::ExitCode first_ = tools::ExitCode::Done;
};

}  // namespace vxmgr
