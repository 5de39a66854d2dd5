#include "vxmgr/diag/dport_results.h"

#include <cstddef>
#include <cstring>

#include "vxmgr/app/code_text.h"

namespace vxmgr {
namespace {

#pragma pack(push, 1)
struct DportRecord {
    uint16_t state;
    uint16_t hop;
    uint16_t tests;
    uint8_t reserved6[2];
    uint8_t lanes[1080];
};
#pragma pack(pop)
static_assert(sizeof(DportRecord) == sizeof(HX_DPORT_RESULT_EX2));
static_assert(offsetof(DportRecord, lanes) == 8);

constexpr const char* kDportStates[] = {"running", "complete"};  // from 1
// From 1, each beyond the one before.
constexpr const char* kHops[] = {"own electrical loop", "own optical loop", "remote optical loop",
                                 "whole link"};
constexpr const char* kVerdicts[] = {"passed", "failed"};
constexpr uint16_t kNoState = 0;
constexpr uint16_t kCompleteState = 2;

const char* StateOfDport(const DportOutcome& outcome) {
    return outcome.IsComplete() ? kDportStates[1] : NameAt(kDportStates, outcome.stateWord, 1);
}

Value VerdictOfDport(const DportOutcome& outcome) {
    if (!outcome.IsComplete()) {
        return {};
    }
    const bool good = outcome.failed.empty();
    return Value::Text(kVerdicts[good ? 0 : 1]).In(good ? Tone::Good : Tone::Bad);
}

}  // namespace

bool DportOutcome::IsComplete() const {
    return stateWord == kCompleteState || stateWord == kNoState;
}

DportOutcome DecodeDport(const HX_DPORT_RESULT_EX2& result) {
    DportRecord record;
    std::memcpy(&record, &result, sizeof record);
    DportOutcome outcome{record.state, record.hop, record.tests, {}};
    for (size_t place = 0; place < sizeof record.lanes; ++place) {
        if (record.lanes[place] != 0) {
            outcome.failed.push_back({place, record.lanes[place]});
        }
    }
    return outcome;
}

using LaneResult = DportOutcome::LaneResult;

const Fields<LaneResult> kLaneResultFields = {
    {"place", "Place", "PLACE", kInteger, &LaneResult::place,
     "among the results of lanes and tests, from 0"},
    {"code", "Code", "CODE", Hexadecimal(2), &LaneResult::code, "of the firmware"},
};
const Fields<DportOutcome> kDportOutcomeFields = {
    {"state", "State", Choice(kDportStates).OrNull(), StateOfDport},
    {"state_word", "", Hexadecimal(4), &DportOutcome::stateWord},
    {"hop", "Tested up to", Choice(kHops).OrNull(),
     [](const DportOutcome& outcome) { return NameAt(kHops, outcome.hopWord, 1); }},
    {"hop_word", "", Hexadecimal(4), &DportOutcome::hopWord},
    {"tests", "Tests", kInteger, &DportOutcome::tests},
    {"verdict", "Verdict", Choice(kVerdicts).OrNull(), VerdictOfDport},
    {"failed", "Failed", kLaneResultFields, &DportOutcome::failed, "no lane failed"},
};

}  // namespace vxmgr
