#include "delayed_completion.h"

namespace driver {

void DelayedCompletions::Initialize() {
    InitializeListHead(&entries_);
    ExInitializeFastMutex(&lock_);
}

void DelayedCompletions::Run(void* context) {
    auto* entry = static_cast<Entry*>(context);
    LARGE_INTEGER interval;
    interval.QuadPart = entry->interval;
    KeDelayExecutionThread(KernelMode, FALSE, &interval);
    IRP* irp = entry->irp;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    InterlockedExchange(&entry->done, 1);
    PsTerminateSystemThread(STATUS_SUCCESS);
}

bool DelayedCompletions::Start(IRP* irp, uint32_t milliseconds) {
    Reap(false);
    auto* entry = static_cast<Entry*>(Allocate(sizeof(Entry)));
    if (entry == nullptr) {
        return false;
    }
    entry->irp = irp;
    entry->interval = -10'000ll * milliseconds;
    // The thread may complete the request before this function ends: mark it first.
    IoMarkIrpPending(irp);
    HANDLE thread = nullptr;
    if (!NT_SUCCESS(PsCreateSystemThread(&thread, THREAD_ALL_ACCESS, nullptr, nullptr, nullptr, Run,
                                         entry))) {
        IoGetCurrentIrpStackLocation(irp)->Control &= static_cast<UCHAR>(~SL_PENDING_RETURNED);
        Release(entry);
        return false;
    }
    ObReferenceObjectByHandle(thread, SYNCHRONIZE, nullptr, KernelMode, &entry->thread, nullptr);
    ZwClose(thread);
    ExAcquireFastMutex(&lock_);
    InsertTailList(&entries_, &entry->link);
    ExReleaseFastMutex(&lock_);
    return true;
}

// Frees the entries of threads that have ended, or (wait) of all of them, once the thread is gone:
// its last instructions are code of this driver.
void DelayedCompletions::Reap(bool wait) {
    LIST_ENTRY finished;
    InitializeListHead(&finished);
    ExAcquireFastMutex(&lock_);
    for (LIST_ENTRY* link = entries_.Flink; link != &entries_;) {
        auto* entry = CONTAINING_RECORD(link, Entry, link);
        link = link->Flink;
        if (wait || entry->done != 0) {
            RemoveEntryList(&entry->link);
            InsertTailList(&finished, &entry->link);
        }
    }
    ExReleaseFastMutex(&lock_);
    while (!IsListEmpty(&finished)) {
        auto* entry = CONTAINING_RECORD(RemoveHeadList(&finished), Entry, link);
        if (entry->thread != nullptr) {
            KeWaitForSingleObject(entry->thread, Executive, KernelMode, FALSE, nullptr);
            ObDereferenceObject(entry->thread);
        }
        Release(entry);
    }
}

void DelayedCompletions::Finish() {
    Reap(true);
}

}  // namespace driver
