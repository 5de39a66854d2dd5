// Temperature of the adapter's board.
#include "statistics/health.h"
#include "statistics/mailbox_command.h"
#include "statistics/query.h"

namespace statistics {
namespace {

// A limit of 0 is none.
bool Reaches(int16_t temperature, int16_t limit) {
    return limit != 0 && temperature >= limit;
}

uint16_t StateOf(const HX_BOARD_TEMPERATURE& board) {
    if (Reaches(board.now, board.critical)) {
        return HX_TEMPERATURE_CRITICAL;
    }
    return Reaches(board.now, board.warning) ? HX_TEMPERATURE_WARNING : HX_TEMPERATURE_NORMAL;
}

}  // namespace

HX_STATUS GetBoardTemperature(uint32_t handle, HX_BOARD_TEMPERATURE* record) {
    if (const HX_STATUS status = Check(handle, needs::kBoardTemperature, record != nullptr);
        status != HXMGT_SUCCESS) {
        return status;
    }
    uint16_t answer[7];
    if (const HX_STATUS status =
            SendMailboxCommand(handle, MailboxCommand::BoardTemperature, {}, answer);
        status != HXMGT_SUCCESS) {
        return status;
    }
    HX_BOARD_TEMPERATURE board{};
    board.now = static_cast<int16_t>(answer[0]);
    board.warning = static_cast<int16_t>(answer[1]);
    board.critical = static_cast<int16_t>(answer[2]);
    board.shutdown = static_cast<int16_t>(answer[3]);
    board.highest = static_cast<int16_t>(answer[4]);
    board.state = StateOf(board);
    board.secondsAbove = answer[5] | answer[6] << 16;
    *record = board;
    return HXMGT_SUCCESS;
}

}  // namespace statistics
