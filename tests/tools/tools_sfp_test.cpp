// Transceivers: identity, measured values of both calibrations, limits and flags.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "support/shown.h"
#include "vxmgr/sfp/sfp_diagnostics.h"
#include "vxmgr/sfp/sfp_identity.h"

namespace {

using namespace vxmgr;
using support::Shown;
using Word = uint8_t[2];

void Put(Word& word, int value) {
    PutBigEndian(static_cast<uint16_t>(value), word);
}

void PutFloat(uint8_t (&bytes)[4], float value) {
    PutBigEndian(std::bit_cast<uint32_t>(value), bytes);
}

constexpr uint8_t kInternal = 0x68;
constexpr uint8_t kExternal = 0x58;
constexpr uint8_t kFlags = 0x80;

SfpIdentity Identity(uint8_t monitoring, uint8_t enhanced) {
    SfpIdentity identity{};
    identity.monitoring = monitoring;
    identity.enhancedOptions = enhanced;
    return identity;
}

const SfpReading& Reading(const SfpReadings& readings, SfpQuantity quantity) {
    return readings.Of(quantity);
}

TEST(ToolsSfpIdentity, CodesAndTextsInWords) {
    SfpIdentity identity{};
    identity.identifier = 0x03;
    identity.connector = 0x07;
    identity.fibreChannelTechnology = 0x40;
    identity.fibreChannelMedia = 0x0C;
    identity.fibreChannelSpeeds = 0x68;
    identity.fibreChannelSpeeds2 = 0x01;
    identity.encoding = 0x06;
    identity.nominalRate = 255;
    identity.maxRate = 113;
    Put(identity.wavelength, 850);
    std::memcpy(identity.vendor, "MAKER           ", 16);
    std::memcpy(identity.date, "240229  ", 8);
    const tools::Record record = kSfpIdentityFields.Make(identity);
    EXPECT_EQ(Shown(record, "identifier"), "SFP");
    EXPECT_EQ(Shown(record, "connector"), "LC");
    EXPECT_EQ(Shown(record, "technology"), "shortwave laser");
    EXPECT_EQ(Shown(record, "media"), "multimode 50 um, multimode 62.5 um");
    EXPECT_EQ(Shown(record, "speeds_gbit"), "8, 16, 32, 64 Gbit/s");
    EXPECT_EQ(Shown(record, "nominal_rate_mbd"), "28250 MBd");
    EXPECT_EQ(Shown(record, "wavelength_nm"), "850 nm");
    EXPECT_EQ(Shown(record, "vendor"), "MAKER");
    EXPECT_EQ(Shown(record, "date"), "2024-02-29");
    EXPECT_EQ(Shown(record, "calibration"), "-");
    identity.connector = 0x7F;
    EXPECT_EQ(Shown(kSfpIdentityFields.Make(identity), "connector"), "connector 0x7f");
    for (const char* wrong : {"241301  ", "240001  ", "24013\xff  ", "240132  "}) {
        std::memcpy(identity.date, wrong, 8);
        EXPECT_EQ(SfpDate(identity.date), "") << wrong;
    }
}

TEST(ToolsSfpIdentity, LengthsInTheirUnits) {
    SfpIdentity identity{};
    identity.lengthSingleMode = 10;
    identity.lengthSingleMode100 = 100;
    identity.lengthOm2 = 3;
    identity.lengthOm4 = 255;
    tools::Record record = kSfpIdentityFields.Make(identity);
    EXPECT_EQ(Shown(record, "lengths_single_mode_m"), "10000 m");
    EXPECT_EQ(Shown(record, "lengths_om2_m"), "30 m");
    EXPECT_EQ(Shown(record, "lengths_om4_m"), "> 2540 m");
    EXPECT_EQ(Shown(record, "lengths_copper_m"), "-");
    // A cable: the same byte is its length, and there is no wavelength.
    identity.fibreChannelTechnology = 0x04;
    identity.lengthOm4 = 5;
    Put(identity.wavelength, 0x0100);
    record = kSfpIdentityFields.Make(identity);
    EXPECT_EQ(Shown(record, "lengths_copper_m"), "5 m");
    EXPECT_EQ(Shown(record, "lengths_om4_m"), "-");
    EXPECT_EQ(Shown(record, "wavelength_nm"), "-");
    // 100 m units beyond their byte leave the kilometres.
    identity.lengthSingleMode = 40;
    identity.lengthSingleMode100 = 255;
    EXPECT_EQ(Shown(kSfpIdentityFields.Make(identity), "lengths_single_mode_m"), "40000 m");
}

TEST(ToolsSfpIdentity, ChecksumsCoverTheirHalves) {
    SfpIdentity identity{};
    std::memset(&identity, 0x5A, sizeof identity);
    identity.baseChecksum = static_cast<uint8_t>(63 * 0x5A);
    identity.extendedChecksum = static_cast<uint8_t>(31 * 0x5A);
    EXPECT_TRUE(BaseChecksumHolds(identity) && ExtendedChecksumHolds(identity));
    identity.fibreChannelSpeeds2 ^= 1;
    EXPECT_FALSE(BaseChecksumHolds(identity));
    EXPECT_TRUE(ExtendedChecksumHolds(identity));
    identity.compliance ^= 1;
    EXPECT_FALSE(ExtendedChecksumHolds(identity));
    identity.compliance ^= 1;
    identity.vendorSpecific[0] ^= 1;
    EXPECT_TRUE(ExtendedChecksumHolds(identity));
}

TEST(ToolsSfpDiagnostics, InternalCalibration) {
    SfpDiagnostics page{};
    Put(page.values[0], -5 * 256 - 128);
    Put(page.values[1], 33000);
    Put(page.values[2], 3500);
    Put(page.values[3], 10000);
    Put(page.values[4], 0);
    const SfpReadings readings = ReadDiagnostics(Identity(kInternal, kFlags), page);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::Temperature).value, -5.5);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::Voltage).value, 3.3);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::Bias).value, 7.0);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::SentPower).value, 1.0);
    EXPECT_EQ(DecibelText(1.0), "0.00");
    EXPECT_EQ(DecibelText(0.5), "-3.01");
    EXPECT_EQ(DecibelText(*Reading(readings, SfpQuantity::ReceivedPower).value), "");
    EXPECT_TRUE(readings.ready);
    EXPECT_EQ(TroubleText(readings), "");
}

TEST(ToolsSfpDiagnostics, ExternalCalibration) {
    SfpDiagnostics page{};
    Put(page.temperature[0], 512);  // slope 2
    Put(page.temperature[1], -256);
    Put(page.values[0], 20 * 256);
    Put(page.voltage[0], 128);  // slope 0.5
    Put(page.values[1], 0xFFFF);
    Put(page.sentPower[0], 256);
    Put(page.sentPower[1], -100);
    Put(page.values[3], 40);
    PutFloat(page.receivedPower[2], 0.25f);  // of the second power
    PutFloat(page.receivedPower[3], 2.0f);
    PutFloat(page.receivedPower[4], 10.0f);
    Put(page.values[4], 100);
    Put(page.limits[4][0], 200);
    const SfpReadings readings = ReadDiagnostics(Identity(kExternal, kFlags), page);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::Temperature).value, 39.0);
    EXPECT_NEAR(*Reading(readings, SfpQuantity::Voltage).value, 3.27675, 1e-9);
    EXPECT_DOUBLE_EQ(*Reading(readings, SfpQuantity::SentPower).value, 0.0);  // not below nothing
    EXPECT_NEAR(*Reading(readings, SfpQuantity::ReceivedPower).value, 0.271, 1e-9);
    EXPECT_NEAR(*Reading(readings, SfpQuantity::ReceivedPower).highAlarm, 1.041, 1e-9);

    PutFloat(page.receivedPower[0], std::numeric_limits<float>::quiet_NaN());
    EXPECT_FALSE(
        Reading(ReadDiagnostics(Identity(kExternal, kFlags), page), SfpQuantity::ReceivedPower)
            .value);
    PutFloat(page.receivedPower[0], std::numeric_limits<float>::infinity());
    const SfpReadings beyond = ReadDiagnostics(Identity(kExternal, kFlags), page);
    const tools::Record row = kReadingFields.Make(ReadingRows(beyond).back());
    EXPECT_EQ(Shown(row, "value"), "-");
    EXPECT_EQ(Shown(row, "dbm"), "-");
}

TEST(ToolsSfpDiagnostics, FlagsOfEachQuantity) {
    SfpDiagnostics page{};
    const SfpIdentity identity = Identity(kInternal, kFlags);
    for (size_t i = 0; i < kSfpQuantities; ++i) {
        const auto bits = static_cast<uint16_t>(0x8000 >> 2 * i);
        page = {};
        Put(page.warnings, bits >> 1);
        EXPECT_EQ(ReadDiagnostics(identity, page).quantities[i].state, SfpState::LowWarning) << i;
        Put(page.warnings, bits);
        EXPECT_EQ(ReadDiagnostics(identity, page).quantities[i].state, SfpState::HighWarning) << i;
        Put(page.alarms, bits >> 1);
        EXPECT_EQ(ReadDiagnostics(identity, page).quantities[i].state, SfpState::LowAlarm) << i;
        Put(page.alarms, bits);
        const SfpReadings readings = ReadDiagnostics(identity, page);
        for (size_t other = 0; other < kSfpQuantities; ++other) {
            EXPECT_EQ(readings.quantities[other].state,
                      other == i ? SfpState::HighAlarm : SfpState::Normal);
        }
    }
    page = {};
    page.status = 0x87;
    EXPECT_EQ(TroubleText(ReadDiagnostics(identity, page)),
              "transmitter off, transmitter fault, signal lost, not ready");
    Put(page.alarms, 0x0040);
    page.status = 0x02;
    EXPECT_EQ(TroubleText(ReadDiagnostics(identity, page)),
              "received power low alarm, signal lost");
}

TEST(ToolsSfpDiagnostics, LimitsDecideWithoutFlags) {
    const SfpIdentity identity = Identity(kInternal, 0);
    SfpDiagnostics page{};
    Put(page.alarms, 0x8000);  // not maintained by this module
    const auto state = [&](int temperature) {
        Put(page.values[0], temperature * 256);
        return ReadDiagnostics(identity, page).quantities[0].state;
    };
    EXPECT_EQ(state(90), SfpState::Normal);  // no limits are set
    const int kLimits[] = {75, -5, 70, 0};
    for (size_t i = 0; i < 4; ++i) {
        Put(page.limits[0][i], kLimits[i] * 256);
    }
    const std::pair<int, SfpState> kCases[] = {
        {76, SfpState::HighAlarm}, {75, SfpState::HighWarning}, {70, SfpState::Normal},
        {0, SfpState::Normal},     {-1, SfpState::LowWarning},  {-5, SfpState::LowWarning},
        {-6, SfpState::LowAlarm},
    };
    for (const auto& [temperature, expected] : kCases) {
        EXPECT_EQ(state(temperature), expected) << temperature;
    }
}

}  // namespace
