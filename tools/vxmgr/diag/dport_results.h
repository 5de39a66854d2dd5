// The results of a D-port test in words.
#pragma once

#include "hxmgtapi.h"
#include "vxmgr/app/vocabulary.h"

namespace vxmgr {

// Three words, and from byte 8 on a byte for each lane and test: 0 is good. A firmware that fills
// only the shorter form gives no state word: then the state is that of a test with results.
struct DportOutcome {
    uint16_t stateWord = 0;
    uint16_t hopWord = 0;  // how far along the link the test went
    uint16_t tests = 0;
    struct LaneResult {
        size_t place;
        uint8_t code;
    };
    std::vector<LaneResult> failed{};

    bool IsComplete() const;
    size_t FailedCount() const { return failed.size(); }
};

DportOutcome DecodeDport(const HX_DPORT_RESULT_EX2& result);
extern const Fields<DportOutcome> kDportOutcomeFields;

}  // namespace vxmgr
