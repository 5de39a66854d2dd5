// What a change does, one row per store and target: a row that fails leaves the others standing.
#pragma once

#include "vxmgr/app/port_fields.h"

namespace vxmgr {

enum class Outcome { Done, Planned, Unchanged, Pending, Failed };

// What it means that the driver does not know a target: wait for it, or fail.
enum class AwayTarget { Pending, Failed };

inline constexpr char kInRegistry[] = "registry";
inline constexpr char kLive[] = "live";

// --store: what the driver reads at its next start, what it works with now, or both.
inline constexpr const char* kStoreNames[] = {"registry", "live", "both"};
inline constexpr Argument kStoreArgument =
    TextOption("--store", "STORE",
               "registry (read at the driver's next start), live (the driver now) or both (both)",
               kStoreNames);

struct StoreChoice {
    bool registry;
    bool live;
};

inline StoreChoice GivenStores(Invocation& invocation, const char* otherwise = "both") {
    const std::string given = invocation.Given().Text("store", otherwise);
    return {given != "live", given != "registry"};
}

struct StoreStep {
    const char* store;
    Wwn target;
    Outcome outcome;
    std::string what;
    HX_STATUS status;
};
extern const Fields<StoreStep> kStoreStepFields;

// The result of a command that changes what is bound or masked.
struct StoreChangeResult {
    const Port* port;
    std::vector<StoreStep> steps;
};
extern const Fields<StoreChangeResult> kStoreChangeFields;

class Steps {
  public:
    Steps(Invocation& invocation, const Port& port)
        : invocation_(invocation), port_(port), object_(port.Object()) {}

    // Planned instead of done in a dry run.
    void Done(const char* store, const Wwn& target, const std::string& what);
    void Add(const char* store, const Wwn& target, Outcome outcome, const std::string& what);
    // By the status: done, or failed and reported.
    void Tried(const char* store, const Wwn& target, HX_STATUS status, const std::string& what);
    void Fail(const char* store, const Wwn& target, ExitCode exit, const std::string& what,
              const std::string& hint);

    // why: "the link is down", or the like.
    void Away(const Wwn& target, AwayTarget away, const char* why);
    // The whole store was written, or would be, which makes no row.
    void StoreWritten();

    // Says what is pending, or that there was nothing to do; the exit code of the whole.
    ExitCode Finish();
    // The same, with the rows as the command's result.
    ExitCode FinishResult();

    const std::vector<StoreStep>& Rows() const { return rows_; }

  private:
    void AddRow(const char* store, const Wwn& target, Outcome outcome, const std::string& what,
                HX_STATUS status);

    Invocation& invocation_;
    const Port& port_;
    const std::string object_;
    std::vector<StoreStep> rows_;
    size_t registryRows_ = 0;  // they come before the others
    size_t failures_ = 0;
    bool anythingToDo_ = false;
    bool stored_ = false;  // something was written to the registry
    bool live_ = false;    // and something tried in the driver
    bool behind_ = false;  // where not everything took effect
    ExitCode first_ = ExitCode::Done;
};

}  // namespace vxmgr
