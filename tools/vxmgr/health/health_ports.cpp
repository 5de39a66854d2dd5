#include "vxmgr/health/health_ports.h"

#include <map>
#include <set>

#include "vxmgr/health/health_visit.h"
#include "vxmgr/update/update_record.h"

namespace vxmgr {
namespace {

// What is asked of each port, by its index, and what this machine knows of the adapter's updates.
struct Task {
    HealthVisit visit;
    std::string interrupted;
    bool updating = false;
};
using Tasks = std::map<uint32_t, Task>;

// Flash that is being written says nothing, and is not disturbed.
void LookForUpdates(Invocation& invocation, const Port& port, Task* task) {
    const auto newest = NewestUpdate(invocation, port.Serial());
    if (newest && newest->IsInterrupted()) {
        task->interrupted = DescribeInterruption(*newest);
    } else if (newest && newest->IsOpen()) {
        task->updating = true;
        task->visit.code = false;
    }
}

// The first port of each adapter that answers is asked what they share.
Tasks TasksOf(Invocation& invocation, const std::vector<Port*>& ports, const HealthPlan& plan) {
    std::set<std::string> adapters;
    Tasks tasks;
    for (const Port* port : ports) {
        Task& task = tasks[port->index];
        const std::string serial = port->Serial();
        // Without a serial number a port is an adapter of its own.
        if (port->answers && (serial.empty() || adapters.insert(serial).second)) {
            task.visit.adapter = true;
            task.visit.code = plan.code;
            LookForUpdates(invocation, *port, &task);
        }
    }
    return tasks;
}

using Answers = std::vector<PortAnswer<HealthReading>>;

Answers AskAll(Invocation& invocation, const std::vector<Port*>& ports, const Tasks& tasks) {
    return ForEachPort<HealthReading>(
        invocation, ports, [tasks](PortVisit& visit, HealthReading* reading) {
            return AskHealth(tasks.at(visit.port.index).visit)(visit, reading);
        });
}

// Counts for a while.
void Sample(Invocation& invocation, const std::vector<Port*>& ports, uint64_t seconds,
            Answers* answers) {
    invocation.Sleep(std::chrono::seconds(seconds));
    const Answers later = ForEachPort(invocation, ports, AskHealth({.countersAlone = true}));
    for (size_t i = 0; i < answers->size(); ++i) {
        if (later[i].status != HXMGT_SUCCESS) {
            (*answers)[i].status = later[i].status;
            (*answers)[i].query = later[i].query;
            continue;
        }
        HealthReading& reading = (*answers)[i].answer;
        const HealthReading before = reading;
        reading.counters = later[i].answer.counters;
        reading.creditRecovery = later[i].answer.creditRecovery;
        TakeSample(before, &reading);
    }
}

}  // namespace

std::vector<PortHealth> ReadHealth(Invocation& invocation, std::vector<Port>& ports,
                                   const HealthPlan& plan) {
    const std::vector<Port*> selected = SelectPorts(invocation, ports);
    const Tasks tasks = TasksOf(invocation, selected, plan);
    Answers answers = AskAll(invocation, selected, tasks);
    if (plan.sample != 0) {
        Sample(invocation, selected, plan.sample, &answers);
    }
    std::vector<PortHealth> health;
    for (auto& one : answers) {
        Port& port = *one.port;
        // One that cannot be opened any more answers as little as one that never did.
        if (one.status != HXMGT_SUCCESS) {
            port.failedQuery =
                port.answers ? port.Name() + " cannot be opened any more" : one.query;
            port.answers = false;
            port.failure = one.status;
            one.answer = {};
        }
        AddInventory(port, &one.answer);
        if (one.answer.adapter) {
            one.answer.adapter->interrupted = tasks.at(port.index).interrupted;
            one.answer.adapter->updating = tasks.at(port.index).updating;
        }
        PortHealth& found = health.emplace_back();
        found.port = &port;
        found.reading = std::move(one.answer);
        found.findings = JudgeHealth(found.reading);
    }
    return health;
}

}  // namespace vxmgr
