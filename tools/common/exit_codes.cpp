#include "exit_codes.h"

namespace tools {
namespace {

constexpr char kSeeHealth[] = "`health -q` lists what it found, `explain health ID` what to do";

constexpr ExitCodeRow kExitCodes[] = {
    {ExitCode::Done, "done", "done, or nothing to do", ""},
    {ExitCode::Failed, "failed", "the operation failed", "the message names the status and object"},
    {ExitCode::Usage, "usage", "wrong command line", "see the command's --help"},
    {ExitCode::NotFound, "not_found", "a named object is not there",
     "list the adapters and ports that are"},
    {ExitCode::NotSupported, "not_supported", "not supported by this chip, driver or firmware",
     "a newer driver or firmware may support it"},
    {ExitCode::AccessDenied, "access_denied", "access denied",
     "run the command from an elevated prompt"},
    {ExitCode::Busy, "busy", "busy: flash lock, driver, or no event slot free",
     "try again later, or end the program that holds it"},
    {ExitCode::TimedOut, "timed_out", "timed out",
     "give a longer --timeout, or look at the adapter: it may hang"},
    {ExitCode::Refused, "refused",
     "refused before anything was written: wrong chip, size, checksum or older version",
     "the message names the check that failed"},
    {ExitCode::NotProven, "not_proven", "written, but not proven",
     "read back and compare before the adapter is restarted"},
    {ExitCode::Cancelled, "cancelled", "cancelled", ""},
    {ExitCode::Partial, "partial", "some of several objects failed",
     "the failed ones are listed with their status"},
    {ExitCode::HealthWarning, "health_warning", "the health check found a warning", kSeeHealth},
    {ExitCode::HealthCritical, "health_critical", "the health check found a critical fault",
     kSeeHealth},
    {ExitCode::NothingChanged, "nothing_changed", "with --detailed-exitcode: nothing changed", ""},
    {ExitCode::ResetPending, "reset_pending",
     "with --detailed-exitcode: changed, and a reset is pending",
     "the pending list names what has to restart"},
    {ExitCode::Internal, "internal", "internal error of the tool",
     "report it with the command line and -v output"},
};

}  // namespace

std::span<const ExitCodeRow> ExitCodes() {
    return kExitCodes;
}

const ExitCodeRow* FindExitCode(int number) {
    for (const ExitCodeRow& row : kExitCodes) {
        if (Number(row.code) == number) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace tools
