// Requests that nobody sends on purpose, in long rows.
#include <array>

#include "emulator/emulator_model_fixture.h"
#include "support/random_requests.h"
#include "support/rounds.h"

namespace {

using namespace emulator_test;

class EmulatorRandom : public ModelFixture {};

TEST_F(EmulatorRandom, RequestsAreAnsweredAndLeaveThePortsWell) {
    const uint32_t seed = support::Seed();
    SCOPED_TRACE("seed " + std::to_string(seed));
    support::RandomRequests requests(seed);
    std::array<uint32_t, 5> completions = {};
    const uint32_t rounds = support::Rounds(20000);
    for (uint32_t round = 0; round < rounds; ++round) {
        const support::RandomRequest request = requests.Next();
        const auto length = static_cast<uint32_t>(request.bytes.size());
        const uint32_t outputLength = request.outputLength;
        const auto buffer = std::make_unique<uint8_t[]>(std::max(length, outputLength));
        std::copy(request.bytes.begin(), request.bytes.end(), buffer.get());
        ++host_.clock;
        uint32_t returned = 0;
        const Completion completion = model_->Request(
            requests.Below(model_->PortCount()), buffer.get(), length, outputLength, &returned);
        ASSERT_LE(returned, completion == Done ? outputLength : 0u) << "round " << round;
        ++completions.at(static_cast<size_t>(completion));
    }
    EXPECT_GT(completions[static_cast<size_t>(Done)], rounds / 2) << "few get past the envelope";
    for (uint32_t port = 0; port < model_->PortCount(); ++port) {
        EXPECT_EQ(Done, Ask(port, command::NodeProperties, 0).completion) << port;
    }
}

}  // namespace
