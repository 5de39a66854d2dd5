// Where this machine keeps what was written to its adapters, and what it was written over:
// vxmgr\updates in the machine's program data, a folder per adapter, a folder per update. Made for
// administrators and the system alone; what belongs to anybody else is not believed.
#pragma once

#include <string>
#include <vector>

#include "common/invocation.h"
#include "vxmgr/app/bytes.h"

namespace vxmgr {

std::string UpdatesFolder();                             // of the machine
std::string UpdatesFolderOf(const std::string& serial);  // of an adapter
std::string QuotedPath(const std::string& path);         // as a shell wants it
std::string JoinPath(const std::string& folder, const std::string& name);
std::string AbsolutePath(const std::string& path);

// Makes the adapter's folder, and in it a new one that is named after the time. Ends the command
// when it cannot, or when one of the folders belongs to somebody else.
std::string MakeUpdateFolder(Invocation& invocation, const std::string& serial);

// A folder that was not there, or is empty. A Windows error code, or 0.
uint32_t MakeNewFolder(const std::string& path);

// Of each update. Before it is there, nothing is written to an adapter.
inline constexpr char kJournalFile[] = "journal.json";

// The folders of an adapter's updates that have a journal, the newest last.
std::vector<std::string> UpdateFolders(const std::string& serial);
std::vector<std::string> AdaptersWithUpdates();  // their folders' names

// Whether a file or folder belongs to the system, the administrators or this user.
bool IsTrusted(const std::string& path);

// Writes a file under a new name, flushes it to the disk and renames it. A Windows error code, or
// 0.
uint32_t SaveDurably(const std::string& path, Bytes bytes);

// The whole of a file that IsTrusted. A Windows error code: ERROR_INVALID_OWNER when it is not,
// ERROR_FILE_TOO_LARGE when it is longer than most.
uint32_t LoadTrusted(const std::string& path, size_t most, std::vector<uint8_t>* bytes);

}  // namespace vxmgr
