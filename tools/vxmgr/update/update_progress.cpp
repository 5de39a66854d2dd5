#include "vxmgr/update/update_progress.h"

#include <algorithm>
#include <cmath>

#include "vxmgr/app/size_text.h"

namespace vxmgr {
namespace {

constexpr double kBetweenLines = 0.1;  // seconds

struct ProgressState {
    std::string object;
    std::string step;
    uint64_t percent;
    uint64_t done;
    uint64_t bytes;
    std::optional<uint64_t> rate;  // bytes a second
    std::optional<uint64_t> left;  // seconds
};

const Fields<ProgressState>& ProgressFields() {
    static const Fields<ProgressState> kFields = {
        {"adapter", "", kSerial, &ProgressState::object},
        {"step", "", kText, &ProgressState::step},
        {"percent", "", kInteger, &ProgressState::percent, "of all steps, by time"},
        {"done", "", Integer("bytes"), &ProgressState::done, "of this step"},
        {"bytes", "", Integer("bytes"), &ProgressState::bytes, "of this step"},
        {"bytes_per_second", "", kInteger.OrNull(), &ProgressState::rate, "of this step"},
        {"seconds_left", "", kInteger.OrNull(), &ProgressState::left, "of all steps"},
    };
    return kFields;
}

}  // namespace

Shape ProgressShape() {
    static const auto kList = ListOf("progress", "Progress", ProgressFields());
    return kList.ShapeOfAll();
}

void UpdateProgress::Begin(std::string step, uint64_t bytes, double seconds) {
    done_ += seconds_;
    step_ = std::move(step);
    bytes_ = bytes;
    moved_ = 0;
    seconds_ = seconds;
    stepStart_ = Clock::now();
    Tell(true);
}

void UpdateProgress::Moved(uint64_t bytes) {
    moved_ = std::min(bytes, bytes_);
    Tell(false);
}

void UpdateProgress::Finish() {
    done_ = total_;
    seconds_ = 0;
    step_ = "done";
    bytes_ = moved_ = 0;
    Tell(true);
}

void UpdateProgress::Tell(bool always) {
    if (!always && Since(told_) < kBetweenLines) {
        return;
    }
    told_ = Clock::now();
    const double part = bytes_ != 0 ? static_cast<double>(moved_) / static_cast<double>(bytes_) : 0;
    const double reached = std::min(done_ + seconds_ * part, total_);
    const double share = total_ > 0 ? reached / total_ : 1;
    const double time = SecondsOfStep();
    ProgressState state{object_, step_, static_cast<uint64_t>(share * 100), moved_, bytes_, {}, {}};
    if (moved_ != 0 && time > 0) {
        state.rate = static_cast<uint64_t>(static_cast<double>(moved_) / time);
    }
    if (reached > 0) {
        state.left = static_cast<uint64_t>(std::ceil(Since(start_) * (1 - share) / share));
    }
    std::string line = std::to_string(state.percent) + " %  " + step_;
    if (state.rate) {
        line += "  " + SizeText(*state.rate) + "/s";
    }
    if (state.left && share < 1) {
        line += "  " + std::to_string(*state.left) + " s left";
    }
    if (invocation_.ShowsProgressLine()) {
        invocation_.ProgressLine(line);
    } else if (always) {
        invocation_.Progress(std::to_string(state.percent) + " %  " + step_);
    }
    invocation_.ProgressRow(ProgressFields().Make(state));
}

}  // namespace vxmgr
