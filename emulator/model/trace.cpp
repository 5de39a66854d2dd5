#include "model/trace.h"

namespace vxemu {

bool Trace::Start(const Host& host) {
    if (Running()) {
        return false;
    }
    end_ = 0;
    entries_ =
        static_cast<TraceEntry*>(host.allocate(host.context, kTraceEntries * sizeof(TraceEntry)));
    return Running();
}

uint64_t Trace::Stop(const Host& host) {
    if (Running()) {
        host.release(host.context, entries_);
        entries_ = nullptr;
    }
    return end_;
}

// Requests of several ports are served at the same time.
void Trace::Add(const Host& host, const TraceEntry& entry) {
    host.Together([&] {
        entries_[end_ % kTraceEntries] = entry;
        return ++end_;
    });
}

}  // namespace vxemu
