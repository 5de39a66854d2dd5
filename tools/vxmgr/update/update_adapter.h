// One selected adapter with all of its ports open: what commands about firmware and flash start
// with, as these belong to the adapter.
#pragma once

#include "vxmgr/app/inventory.h"

namespace vxmgr {

struct AdapterSession {
    std::vector<Port> ports;      // those that could be opened
    std::vector<Device> devices;  // of these ports, in the same order
    std::string serial;           // as it was when they were opened

    const Port& First() const { return ports.front(); }
    uint32_t Handle() const { return devices.front().Handle(); }
    std::string Object() const { return First().Object(); }

    // Reads versions and attributes anew; those that cannot be read are empty then.
    void Refresh();
};

// "serial", with which the result of each of these commands begins.
extern const Fields<AdapterSession> kSessionFields;

// Ends the command unless exactly one adapter is selected and one of its ports can be opened. A
// port that cannot be is left out with a warning: the library restarts open ports alone.
AdapterSession OpenSelectedAdapter(Invocation& invocation);

// What -a selects, several too; without it there must be one alone. Ends the command otherwise.
std::vector<const Adapter*> SelectSomeAdapters(Invocation& invocation,
                                               const std::vector<Adapter>& adapters);

// The same for one that was selected among others.
AdapterSession OpenAdapter(Invocation& invocation, const Adapter& adapter);

std::string RunningFirmware(const Port& port);  // empty: not known
std::string RunningBootCode(const Port& port);
std::string ModelOf(const Port& port);
std::string ChipTextOf(const AdapterSession& session);  // "0x7740"; empty: not known

// A question about the adapter: the action, serial number, model, ports, and which volumes are
// behind them. The session has to live until the question is asked.
Question QuestionAbout(const AdapterSession& session, const std::string& action);

}  // namespace vxmgr
