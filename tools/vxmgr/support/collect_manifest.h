// What a file for support says about itself.
#pragma once

#include <string>
#include <vector>

#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

struct CollectedMember {
    std::string name;
    uint64_t size;
    std::string sha256;
    std::string command;      // empty: made by none
    std::optional<int> exit;  // of the command
    std::optional<uint64_t> milliseconds;
};

// A command that could not do all, or something that is not there.
struct CollectProblem {
    std::string what;
    std::optional<int> exit;
    std::string text;
};

struct CollectManifest {
    std::string tool;
    std::string library;
    std::string host;
    std::string started;
    std::string ended;
    bool redacted = false;
    std::vector<CollectedMember> members;
    std::vector<CollectProblem> errors;
    std::vector<CollectProblem> leftOut;
};

Shape CollectManifestShape();

}  // namespace vxmgr
