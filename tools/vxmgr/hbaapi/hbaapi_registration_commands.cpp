// hbaapi register|unregister: the entry by which the common library of the standard HBA API finds
// this vendor's.
#include "common/invocation.h"
#include "vxmgr/hbaapi/commands.h"
#include "vxmgr/hbaapi/hbaapi_library.h"

namespace vxmgr {
namespace {

using tools::ExitCode;
using tools::Value;
using File = std::optional<std::string>;

File Registered(tools::Invocation& invocation) {
    File file;
    if (const uint32_t error = ReadRegisteredFile(&file); error != 0) {
        invocation.Fail(error, "the registry entry cannot be read", RegistrationKey());
    }
    return file;
}

Value FileValue(const File& file) {
    return file ? Value::Text(*file) : Value();
}

// Brings the entry from what it is to what it is to be.
ExitCode Change(tools::Invocation& invocation, const File& wanted) {
    const File before = Registered(invocation);
    const bool needed = before != wanted;
    if (needed && !invocation.DryRun()) {
        const uint32_t error = wanted ? WriteRegisteredFile(*wanted) : RemoveRegisteredFile();
        if (error != 0) {
            invocation.Fail(error, "the registry entry cannot be changed", RegistrationKey());
        }
        invocation.Changed();
    }
    const File after = Registered(invocation);
    tools::Record& result = invocation.Result();
    result.Add("key", "Registry key", Value::Text(RegistrationKey()));
    result.Add("value_name", "Value", Value::Text(kRegisteredValue));
    result.Add("previous", "Before", FileValue(before));
    result.Add("file", "Library", FileValue(after));
    if (!needed) {
        invocation.Note(wanted ? "already registered" : "is not registered");
    } else if (invocation.DryRun()) {
        invocation.Note("dry run: " + (wanted ? *wanted + " would be registered"
                                              : *before + " would no longer be registered"));
    } else if (after != wanted) {
        invocation.Fail(ExitCode::NotProven, "the entry was changed, but does not read back");
    }
    return ExitCode::Done;
}

ExitCode HbaRegister(tools::Invocation& invocation) {
    const File own = OwnLibraryFile();
    if (!own) {
        invocation.Fail(ExitCode::NotFound, "there is no VXMGMT.DLL beside this program",
                        "run the vxmgr.exe that is beside the library to register");
    }
    return Change(invocation, own);
}

ExitCode HbaUnregister(tools::Invocation& invocation) {
    return Change(invocation, std::nullopt);
}

}  // namespace

tools::CommandRows HbaapiRegistrationCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "hbaapi register",
            .risk = tools::Risk::Reversible,
            .help = "have the common library of the HBA API find this one",
            .schema = "hbaapi.registration",
            .run = HbaRegister,
            .example = "hbaapi register",
        },
        {
            .path = "hbaapi unregister",
            .risk = tools::Risk::Reversible,
            .help = "take that registration back",
            .schema = "hbaapi.registration",
            .run = HbaUnregister,
            .example = "hbaapi unregister",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
