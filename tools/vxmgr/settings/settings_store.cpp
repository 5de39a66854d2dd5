#include "vxmgr/settings/settings_store.h"

namespace vxmgr {
namespace {

// What the user can do when neither the old nor the new contents stand there.
std::string RemedyOf(const PortSettings& settings) {
    return settings.bank ? std::string("the ") + settings.bank->NameInUse() +
                               " bank, which is in use, was not touched: write again before the "
                               "port is reset"
                         : "write an export again before the port or the host is reset";
}

// The bank that the image was made from may be another than the one that is written.
void CheckBase(Invocation& invocation, const PlaceWrite& write, const PortSettings& base) {
    std::vector<uint8_t> now;
    const HX_STATUS status = base.readInUse(&now);
    if (status != HXMGT_SUCCESS) {
        invocation.Fail(status, write.what + " cannot be read; nothing was written",
                        base.ItsPort().Object());
    }
    if (now != base.bytes) {
        FailChangedMeanwhile(write, base.ItsPort());
    }
}

}  // namespace

std::vector<uint8_t> ReadReplaced(const PortSettings& settings) {
    std::vector<uint8_t> bytes;
    if (settings.bank && ReadBank(*settings.session, *settings.bank, &bytes) != HXMGT_SUCCESS) {
        bytes.clear();
    }
    return bytes;
}

bool WriteSettings(Invocation& invocation, const SettingsWrite& given,
                   std::vector<uint8_t>& image) {
    const PortSettings& base = given.base;
    const PortSession& session = *base.session;
    const bool elsewhere = base.bank && !base.fromOther;
    const std::string remedy = RemedyOf(base);
    PlaceWrite write{
        .what = given.what,
        .finishes = given.what,
        .image = std::move(image),
        .before = elsewhere ? given.replaced : base.bytes,
        .lookAgain = "look at the difference again",
        .recheck = Recheck::Required,
        .read = base.readInUse,
        .write = [&](std::vector<uint8_t>& bytes) { return given.write(session.Handle(), bytes); },
        .failed = {{" was perhaps not written whole, and cannot be read back", remedy},
                   {" was not written", "it holds what it held before"},
                   {" holds what was to be written, but the driver reported a failure",
                    "read it again before the port is reset"},
                   {" holds neither what it held nor what was written", remedy}},
        .accepted = {{" was written, but cannot be read back", remedy},
                     {" was not written, although it was accepted", "it holds what it held before"},
                     {},
                     {" holds neither what it held nor what was written", remedy}},
        .mixedUpTo = "it is the new one",
    };
    if (base.bank) {
        write.read = [&](std::vector<uint8_t>* bytes) {
            return ReadBank(session, *base.bank, bytes);
        };
    }
    if (elsewhere) {
        write.check = [&] { CheckBase(invocation, write, base); };
    }
    const WriteOutcome outcome = WritePlace(invocation, session.Handle(), session.port, write);
    image = std::move(write.image);
    if (outcome.trouble) {
        throw *outcome.trouble;
    }
    if (outcome.interrupted) {
        invocation.Warn("interrupted; " + write.what + " was written and reads back");
    }
    return outcome.interrupted;
}

std::string WhereItGoes(const std::optional<OtherBank>& bank) {
    return bank ? std::string("It goes to the ") + bank->Name() +
                      " bank; the firmware uses it from the port's next reset on."
                : std::string("The port's firmware reads it at its next reset.");
}

}  // namespace vxmgr
