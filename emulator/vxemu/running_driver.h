// What several commands need of the running driver and of the command line. All of it ends the
// command with a message when something is wrong.
#pragma once

#include <memory>

#include "control_device.h"
#include "model/profile/profile.h"
#include "vocabulary.h"

namespace vxemu {

class RunningDriver {
  public:
    RunningDriver(Invocation& invocation, bool change);

    std::unique_ptr<StatusReply> Status();
    std::unique_ptr<FaultListReply> Faults();
    std::unique_ptr<Profile> RunningProfile();

    // Sends a change; what names it in a message.
    template <typename Record>
    void Send(uint32_t code, const Record& record, const std::string& what) {
        Check(device_.Send(code, record), what);
    }
    template <typename Record>
    uint32_t SendForCount(uint32_t code, const Record& record, const std::string& what) {
        CountReply reply = {};
        Check(device_.Send(code, record, &reply), what);
        return reply.count;
    }

    // Asks for the reply to a record.
    template <typename Reply, typename Record>
    std::unique_ptr<Reply> Fetch(uint32_t code, const Record& record, const std::string& what) {
        auto reply = std::make_unique<Reply>();
        Check(device_.Send(code, record, reply.get()), what);
        return reply;
    }

    // Sends a change of the fabric, which the driver may refuse.
    template <typename Record>
    void SendChange(uint32_t code, const Record& record, const std::string& what) {
        ChangeReply reply = {};
        Check(device_.Send(code, record, &reply), what);
        CheckChange(reply.error, what);
    }

  private:
    void CheckChange(ProfileError error, const std::string& what);
    void Check(uint32_t error, const std::string& what);

    Invocation& invocation_;
    ControlDevice device_;
};

// A port as "scsi:N" or a bare number; or "all", which is kAnyPort.
uint32_t RequirePort(Invocation& invocation, const std::string& text);
uint32_t RequirePortOrAll(Invocation& invocation, const std::string& text);
std::string PortName(uint32_t scsiPort);

// A built-in profile by its name, or a JSON file. *profile is filled, and valid.
void RequireProfile(Invocation& invocation, const std::string& nameOrFile, Profile* profile);

// A valid profile from a JSON file.
void RequireProfileFile(Invocation& invocation, const std::string& path, Profile* profile);

}  // namespace vxemu
