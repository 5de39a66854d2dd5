// Export and import of a port's stored data, the same for bindings and LUN masks.
#pragma once

#include <functional>
#include <span>

#include "vxmgr/bindings/store_port.h"
#include "vxmgr/bindings/store_steps.h"

namespace vxmgr {

std::span<const tools::Argument> ExportArguments();
std::span<const tools::Argument> ImportArguments();

// Writes the text of document(port) to FILE, with the number of its targets in the result.
using MakeDocument = std::function<std::string(PortTargets& targets, size_t* count)>;
tools::ExitCode Export(tools::Invocation& invocation, const MakeDocument& make);

// How one kind of data is imported.
template <class Block>
struct ImportKind {
    const char* name;  // "bindings"
    DocumentPort (*read)(std::string_view text, Block* block);
    StoredBlock<Block> PortTargets::*stored;
    // Makes the block fit for the port's driver, or ends the command.
    void (*adapt)(tools::Invocation& invocation, const PortTargets& targets, Block& block);
    void (*applyLive)(tools::Invocation& invocation, PortTargets& targets, const Block& block,
                      Steps& steps);
    const char* consequence;  // for the question, where the command asks one
};
template <class Block>
tools::ExitCode Import(tools::Invocation& invocation, const ImportKind<Block>& kind);

}  // namespace vxmgr
