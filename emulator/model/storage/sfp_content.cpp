#include "model/storage/sfp_content.h"

#include <cstring>
#include <iterator>

#include "hxmgtapi.h"
#include "model/bytes/bytes.h"
#include "model/bytes/pattern.h"

namespace vxemu {
namespace {

constexpr uint8_t kTwoWireOnly = 0x04;
constexpr uint8_t kShortDistance = 0x40;   // of the link, in byte 7
constexpr uint8_t kShortWaveLaser = 0x40;  // without open fibre control, in byte 8
constexpr uint8_t kMultimode = 0x0C;
constexpr uint8_t k64b66b = 0x06;
constexpr uint8_t k8b10b = 0x01;
constexpr uint8_t kInternallyCalibrated = 0x68;  // diagnostics there, average received power
constexpr uint8_t kAlarmsAndFlags = 0xF0;
constexpr uint8_t kComplianceVersion = 0x08;  // SFF-8472 revision 12.3
constexpr uint8_t kRateBeyondByte = 0xFF;
constexpr uint8_t kTransmitFault = 0x04;
constexpr uint8_t kSignalLost = 0x02;
constexpr uint8_t kOui[3] = {0x02, 0x45, 0x4D};

constexpr uint32_t kLowerRateGigabits = 8;  // below it 8b/10b

// Usual value, how far it moves, and limits: high and low alarm, high and low warning.
struct QuantityRow {
    uint16_t usual;
    uint16_t swing;
    uint16_t limits[4];
};
constexpr uint16_t kDegree = 256;
constexpr QuantityRow kQuantities[] = {
    {38 * kDegree, 2 * kDegree, {75 * kDegree, 0xFB00, 70 * kDegree, 0}},
    {33000, 120, {36000, 30000, 35000, 31000}},
    {3500, 60, {6000, 1000, 5500, 1500}},
    {5800, 150, {12589, 1258, 10000, 1584}},
    {5200, 200, {15848, 398, 12589, 631}},
};
constexpr uint32_t kReceivedPower = std::size(kQuantities) - 1;
constexpr uint32_t kDarkness = 1;
constexpr uint32_t kPerMicrowatt = 10;
constexpr uint32_t kTemperature = 0;  // the one quantity that may be negative

// A high and a low bit for each quantity, the highest bits for the first one.
struct Flags {
    uint16_t bits = 0;

    void Compare(uint32_t quantity, uint32_t value, uint16_t high, uint16_t low) {
        const uint32_t highBit = 0x8000u >> 2 * quantity;
        bits |=
            static_cast<uint16_t>((Ordered(quantity, value) > Ordered(quantity, high)) * highBit);
        bits |= static_cast<uint16_t>((Ordered(quantity, value) < Ordered(quantity, low)) *
                                      (highBit >> 1));
    }

  private:
    static int32_t Ordered(uint32_t quantity, uint32_t word) {
        return quantity == kTemperature ? static_cast<int16_t>(word) : static_cast<int32_t>(word);
    }
};

// Bits of the first byte of speeds, lowest first: 1, 2, 4, ... gigabits.
uint8_t SpeedBits(uint32_t gigabits) {
    uint8_t bits = 0;
    for (uint32_t speed = gigabits, taken = 0; speed != 0 && taken < 3; speed /= 2, ++taken) {
        constexpr struct {
            uint32_t speed;
            uint8_t bit;
        } kBits[] = {{1, 0x01}, {2, 0x04}, {4, 0x10}, {8, 0x40}, {16, 0x20}, {32, 0x08}};
        for (const auto& row : kBits) {
            bits |= row.speed == speed ? row.bit : 0;
        }
    }
    return bits;
}

// What a port's highest speed means: its name in gigabits and its rate on the wire in MBd (FC-PI),
// of which a symbol carries two bits at 64 gigabits.
struct LinkRate {
    uint8_t code;  // HX_SPEED_...
    uint32_t gigabits;
    uint32_t megabaud;
};

LinkRate RateOf(const PortProfile& port) {
    constexpr LinkRate kRates[] = {
        {HX_SPEED_1GBIT, 1, 1062},    {HX_SPEED_2GBIT, 2, 2125},    {HX_SPEED_4GBIT, 4, 4250},
        {HX_SPEED_8GBIT, 8, 8500},    {HX_SPEED_16GBIT, 16, 14025}, {HX_SPEED_32GBIT, 32, 28050},
        {HX_SPEED_64GBIT, 64, 28900},
    };
    constexpr LinkRate kUsual = {HX_SPEED_16GBIT, 16, 14025};
    for (const LinkRate& rate : kRates) {
        if (port.supportedSpeeds == rate.code) {
            return rate;
        }
    }
    return kUsual;
}

uint8_t InUnits(uint32_t megabaud, uint32_t unit) {
    return static_cast<uint8_t>((megabaud + unit / 2) / unit);
}

}  // namespace

void FillTransceiver(const AdapterProfile& adapter, const PortProfile& port,
                     formats::SfpIdentity& identity) {
    std::memset(&identity, 0, sizeof identity);
    const LinkRate rate = RateOf(port);
    identity.identifier = port.transceiverType[0];
    identity.extendedIdentifier = kTwoWireOnly;
    identity.connector = port.transceiverType[1];
    identity.fibreChannelLink = kShortDistance;
    identity.fibreChannelTechnology = kShortWaveLaser;
    identity.fibreChannelMedia = kMultimode;
    identity.fibreChannelSpeeds = SpeedBits(rate.gigabits);
    identity.encoding = rate.gigabits > kLowerRateGigabits ? k64b66b : k8b10b;
    const bool beyond = rate.megabaud >= kRateBeyondByte * 100;
    identity.nominalRate = beyond ? kRateBeyondByte : InUnits(rate.megabaud, 100);
    identity.maxRate = beyond ? InUnits(rate.megabaud, 250) : 0;
    identity.lengthOm2 = 3;  // of 10 m, 50 um fibre
    identity.lengthOm3 = 7;  // of 10 m, OM3
    CopyPadded(identity.vendor, "EMULATED OPTICS");
    std::memcpy(identity.vendorOui, kOui, sizeof identity.vendorOui);
    CopyPadded(identity.part, "EMU-SFP-SW");
    CopyPadded(identity.revision, "1.00");
    formats::PutBigEndian(850, identity.wavelength);
    identity.options[1] = 0x1A;  // loss of signal, fault, disable
    char serial[sizeof identity.serial] = {};
    // The end of the adapter's serial tells adapters apart; the port's number, its ports.
    const size_t length = std::strlen(adapter.serial);
    constexpr size_t kTail = 10;
    const size_t tail = length < kTail ? length : kTail;
    std::memcpy(serial, adapter.serial + length - tail, tail);
    serial[tail] = 'P';
    serial[tail + 1] = static_cast<char>('0' + port.pciFunction);
    CopyPadded(identity.serial, serial);
    CopyPadded(identity.date, "240101");
    identity.monitoring = kInternallyCalibrated;
    identity.enhancedOptions = kAlarmsAndFlags;
    identity.compliance = kComplianceVersion;
    UpdateChecksums(identity);
}

void FillTransceiver(formats::SfpDiagnostics& diagnostics) {
    std::memset(&diagnostics, 0, sizeof diagnostics);
    for (uint32_t at = 0; at < std::size(kQuantities); ++at) {
        for (uint32_t limit = 0; limit < std::size(kQuantities[at].limits); ++limit) {
            formats::PutBigEndian(kQuantities[at].limits[limit], diagnostics.limits[at][limit]);
        }
    }
    // Slopes of 1 and offsets of 0, as internally calibrated modules have them.
    constexpr uint8_t kReceivedPowerSlope[] = {0x3F, 0x80, 0, 0};
    std::memcpy(diagnostics.receivedPower[3], kReceivedPowerSlope, sizeof kReceivedPowerSlope);
    for (auto* calibration : {&diagnostics.bias, &diagnostics.sentPower, &diagnostics.temperature,
                              &diagnostics.voltage}) {
        (*calibration)[0][0] = 1;
    }
    UpdateChecksum(diagnostics);
    Measure(0, {}, diagnostics);
}

void Measure(uint32_t turn, const Signal& signal, formats::SfpDiagnostics& diagnostics) {
    Flags alarms;
    Flags warnings;
    for (uint32_t at = 0; at < std::size(kQuantities); ++at) {
        const QuantityRow& row = kQuantities[at];
        const uint32_t move = PatternWord(turn, at) % (2u * row.swing + 1);
        uint32_t value = row.usual - row.swing + move;
        if (at == kReceivedPower) {
            value = !signal.link                ? kDarkness
                    : signal.receivedPower != 0 ? signal.receivedPower * kPerMicrowatt
                                                : value;
        }
        formats::PutBigEndian(value, diagnostics.values[at]);
        alarms.Compare(at, value, row.limits[0], row.limits[1]);
        warnings.Compare(at, value, row.limits[2], row.limits[3]);
    }
    diagnostics.status = static_cast<uint8_t>((signal.link ? 0 : kSignalLost) |
                                              (signal.transmitFault ? kTransmitFault : 0));
    formats::PutBigEndian(alarms.bits, diagnostics.alarms);
    formats::PutBigEndian(warnings.bits, diagnostics.warnings);
}

}  // namespace vxemu
