#include "running_driver.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "profile_json.h"

namespace vxemu {
namespace {

constexpr uint32_t kNoSuchDevice = 433;
constexpr std::uintmax_t kLongestProfileFile = 4u * 1024 * 1024;

std::filesystem::path PathOf(const std::string& text) {
    return {std::u8string(text.begin(), text.end())};
}

}  // namespace

RunningDriver::RunningDriver(Invocation& invocation, bool change) : invocation_(invocation) {
    const uint32_t error = device_.Open(change);
    if (error == ERROR_FILE_NOT_FOUND) {
        invocation.Fail(ExitCode::NotFound, "the emulated adapters do not run",
                        "start them with `vxemu start`");
    }
    if (error != ERROR_SUCCESS) {
        invocation.Fail(error, "the driver of the emulated adapters");
    }
}

void RunningDriver::Check(uint32_t error, const std::string& what) {
    // The driver's "no such device" arrives as either, depending on the system.
    if (error == ERROR_FILE_NOT_FOUND || error == kNoSuchDevice) {
        invocation_.Fail(ExitCode::NotFound, what + ": not there",
                         "see `vxemu status` and `vxemu profile show`");
    }
    if (error != ERROR_SUCCESS) {
        invocation_.Fail(error, what);
    }
}

void RunningDriver::CheckChange(ProfileError error, const std::string& what) {
    if (error != ProfileError::None) {
        invocation_.Fail(ExitCode::Refused, what + ": " + ProfileErrorText(error));
    }
}

std::unique_ptr<StatusReply> RunningDriver::Status() {
    auto reply = std::make_unique<StatusReply>();
    Check(device_.Ask(control::kStatus, reply.get()), "status");
    if (reply->version != kControlVersion) {
        invocation_.Fail(ExitCode::NotSupported,
                         "the running driver is of another version than this tool",
                         "stop and start it again");
    }
    return reply;
}

std::unique_ptr<FaultListReply> RunningDriver::Faults() {
    auto reply = std::make_unique<FaultListReply>();
    Check(device_.Ask(control::kFaultList, reply.get()), "fault list");
    return reply;
}

std::unique_ptr<Profile> RunningDriver::RunningProfile() {
    auto profile = std::make_unique<Profile>();
    Check(device_.Ask(control::kReadProfile, profile.get()), "profile");
    return profile;
}

uint32_t RequirePort(Invocation& invocation, const std::string& text) {
    constexpr std::string_view kPrefix = "scsi:";
    const bool prefixed = text.starts_with(kPrefix);
    const auto number =
        ParseNumber(prefixed ? text.substr(kPrefix.size()) : std::string_view(text));
    if (!number || *number > kMaxScsiPort) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is not a port",
                        "give scsi:N or N, with a SCSI port number from 0 to 63");
    }
    return static_cast<uint32_t>(*number);
}

uint32_t RequirePortOrAll(Invocation& invocation, const std::string& text) {
    return text == "all" ? kAnyPort : RequirePort(invocation, text);
}

std::string PortName(uint32_t scsiPort) {
    return scsiPort == kAnyPort ? "all" : "scsi:" + std::to_string(scsiPort);
}

void RequireProfileFile(Invocation& invocation, const std::string& path, Profile* profile) {
    const std::filesystem::path file = PathOf(path);
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(file, failure);
    if (failure) {
        invocation.Fail(ExitCode::NotFound, path + ": neither a file nor a built-in profile",
                        "see `vxemu profile list`");
    }
    if (size > kLongestProfileFile) {
        invocation.Fail(ExitCode::Refused, path + ": too large for a profile");
    }
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    std::string error;
    if (!ProfileFromJson(text.str(), profile, &error)) {
        invocation.Fail(ExitCode::Refused, path + ": " + error,
                        "`vxemu profile show lab` prints an example");
    }
}

void RequireProfile(Invocation& invocation, const std::string& nameOrFile, Profile* profile) {
    if (!FillBuiltInProfile(nameOrFile.c_str(), *profile)) {
        RequireProfileFile(invocation, nameOrFile, profile);
    }
}

}  // namespace vxemu
