#include "vxmgr/ports/credit_recovery.h"

#include "vxmgr/app/getters.h"

namespace vxmgr {
namespace {

using Recovery = HX_BBCR_DATA;

constexpr const char* kRecoveryStates[] = {"on", "off", "not_supported"};
constexpr const char* kRecoveryReasons[] = {"link_down", "loop", "not_configured", "refused"};
constexpr const char* kRecoveryReasonTexts[] = {"the link is down", "a loop has none",
                                                "not configured", "refused by the attached port"};

Value RecoveryState(const Recovery& recovery) {
    const size_t state = recovery.state - size_t{HX_BBCR_ON};
    if (state >= std::size(kRecoveryStates)) {
        return {};
    }
    return Value::Text(kRecoveryStates[state])
        .Shown(recovery.state == HX_BBCR_NOT_SUPPORTED ? "not supported" : kRecoveryStates[state])
        .In(recovery.state == HX_BBCR_ON ? Tone::Good : Tone::Plain);
}

Value RecoveryReason(const Recovery& recovery) {
    const size_t reason = recovery.reason - size_t{HX_BBCR_LINK_DOWN};
    return recovery.state == HX_BBCR_OFF && reason < std::size(kRecoveryReasons)
               ? Value::Text(kRecoveryReasons[reason]).Shown(kRecoveryReasonTexts[reason])
               : Value();
}

// Without credit recovery there is nothing to count.
template <auto member>
Value RecoveryNumber(const Recovery& recovery) {
    return recovery.state != HX_BBCR_NOT_SUPPORTED ? Value::Number(Packed<member>(recovery))
                                                   : Value();
}

}  // namespace

constexpr auto kNumber = kInteger.OrNull().Quiet();
constexpr auto kCount = kCounter.OrNull().Quiet();
const Fields<Recovery> kCreditRecoveryFields = {
    {"state", "State", Choice(kRecoveryStates).OrNull(), RecoveryState},
    {"reason", "Why it is off", Choice(kRecoveryReasons).OrNull().Quiet(), RecoveryReason},
    {"configured", "Own BB_SC_N", kNumber, RecoveryNumber<&Recovery::configured>},
    {"attached", "Attached port's BB_SC_N", kNumber, RecoveryNumber<&Recovery::attached>},
    {"negotiated", "Negotiated BB_SC_N", kNumber, RecoveryNumber<&Recovery::negotiated>,
     "a BB_SC primitive every 2^N frames; 0: none"},
    {"credits_recovered", "Credits recovered", kCount, RecoveryNumber<&Recovery::creditsRecovered>},
    {"frames_lost", "Frames lost", kCount, RecoveryNumber<&Recovery::framesLost>},
};

}  // namespace vxmgr
