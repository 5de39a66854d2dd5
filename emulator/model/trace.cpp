#include "model/trace.h"

namespace vxemu {

bool Trace::Start(const Host& host) {
    if (Kept()) {
        return false;
    }
    next_ = 0;
    ended_ = false;
    entries_ =
        static_cast<TraceEntry*>(host.allocate(host.context, kTraceEntries * sizeof(TraceEntry)));
    return Kept();
}

void Trace::Drop(const Host& host) {
    if (Kept()) {
        host.release(host.context, entries_);
        entries_ = nullptr;
    }
}

// Requests of several ports are served at the same time.
void Trace::Add(const Host& host, const TraceEntry& entry) {
    host.Together([&] {
        entries_[next_ % kTraceEntries] = entry;
        return ++next_;
    });
}

}  // namespace vxemu
