// Flash requests to a model, as the library makes them, and images to write.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <vector>

#include "emulator/emulator_model_fixture.h"
#include "flash/flash_records.h"
#include "formats/crc32.h"
#include "formats/firmware_image.h"
#include "model/storage/flash_content.h"
#include "model/storage/flash_signature.h"
#include "support/rom_builder.h"

namespace emulator_test {

inline void Sign(Bytes& image, uint16_t deviceId, uint16_t region) {
    const size_t body = image.size() - sizeof(vxemu::CodeSignature);
    vxemu::CodeHash hash(deviceId, region);
    hash.Add(image.data(), body);
    vxemu::CodeSignature signature = {};
    std::memcpy(signature.mark, vxemu::kSignatureMark, sizeof signature.mark);
    signature.deviceId = deviceId;
    signature.region = region;
    signature.hash = hash.Value();
    std::memcpy(image.data() + body, &signature, sizeof signature);
}

// The image with another version, its checksum and signature right.
inline Bytes WithVersion(Bytes image, uint32_t major, uint32_t minor, uint32_t patch,
                         uint16_t deviceId) {
    support::PutWord(image, formats::kVersionWord, major);
    support::PutWord(image, formats::kVersionWord + 1, minor);
    support::PutWord(image, formats::kVersionWord + 2, patch);
    support::SealSegment(image, 0, formats::FirmwareWord(image, formats::kSegmentLengthWord));
    Sign(image, deviceId, 1);
    return image;
}

class EmulatorFlashFixture : public ModelFixture {
  protected:
    Answer AskFlash(uint32_t port, Command command, uint16_t subCode, uint32_t parameter,
                    const Bytes& input, uint32_t requestLen, uint32_t output) {
        ExtRequest request =
            Envelope({command.code, subCode}, static_cast<uint32_t>(input.size()), output);
        request.ext.parameter = parameter;
        request.ext.requestLen = requestLen;
        return Send(port, request, input,
                    static_cast<uint32_t>(sizeof request) +
                        std::max(static_cast<uint32_t>(input.size()), output));
    }
    Answer ReadChunk(uint32_t port, uint16_t region, uint32_t kib, uint32_t index,
                     uint32_t output) {
        return AskFlash(port, FlashRead, region, kib << 16 | index, Bytes(4), 4, output);
    }
    Answer ReadAt(uint32_t port, uint32_t offset, uint32_t length, uint32_t output) {
        return AskFlash(port, FlashRead, flash::kByOffset, offset, Bytes(8), length, output);
    }
    Answer WriteAt(uint32_t port, uint32_t offset, const Bytes& data, uint32_t length) {
        return AskFlash(port, FlashWrite, flash::kByOffset, offset, data, length, 8);
    }
    Answer WriteChunk(uint32_t port, uint16_t region, uint32_t kib, uint32_t index,
                      const Bytes& data) {
        return AskFlash(port, FlashWrite, region, kib << 16 | index, data,
                        static_cast<uint32_t>(data.size()), 4);
    }

    std::vector<flash::DriverRegion> Layout(uint32_t port, Command command = FlashLayout) {
        const flash::LayoutHead head = {sizeof(flash::LayoutTable), flash::kAskedRegions};
        Bytes input(sizeof(flash::LayoutTable));
        std::memcpy(input.data(), &head, sizeof head);
        const Answer answer = Ask(port, command, sizeof(flash::LayoutTable), input);
        EXPECT_EQ(answer.Status(), Success);
        flash::LayoutHead found = {};
        std::memcpy(&found, answer.data.data(), sizeof found);
        std::vector<flash::DriverRegion> regions(found.count);
        const size_t bytes = regions.size() * sizeof regions[0];
        EXPECT_EQ(answer.envelope.ext.responseLen, sizeof found + bytes);
        std::memcpy(regions.data(), answer.data.data() + sizeof found, bytes);
        return regions;
    }
    uint32_t SizeOf(uint32_t port, uint16_t region) {
        for (const flash::DriverRegion& row : Layout(port)) {
            if (row.code == region) {
                return row.size;
            }
        }
        ADD_FAILURE() << "no region " << region;
        return 0;
    }

    Bytes ReadRegion(uint32_t port, uint16_t region) {
        return ReadRegion(port, region, SizeOf(port, region));
    }
    Bytes ReadRegion(uint32_t port, uint16_t region, uint32_t size) {
        if (size <= flash::kChunkBytes) {
            const Answer answer = AskFlash(port, FlashRead, region, 0, {}, 0, size);
            EXPECT_EQ(answer.Status(), Success) << region;
            return answer.data;
        }
        Bytes all;
        for (uint32_t index = 0; all.size() < size; ++index) {
            const auto rest = static_cast<uint32_t>(size - all.size());
            const uint32_t kib = std::min(64u, (rest + 1023) / 1024);
            const Answer answer = ReadChunk(port, region, kib, index, kib * 1024);
            if (answer.Status() != Success || answer.data.empty()) {
                ADD_FAILURE() << region << " chunk " << index;
                break;
            }
            all.insert(all.end(), answer.data.begin(), answer.data.end());
        }
        all.resize(size);
        return all;
    }
    // All regions of the adapter, by code; of the large blank ones the first bytes.
    std::map<uint16_t, Bytes> ReadAll(uint32_t port) {
        std::map<uint16_t, Bytes> all;
        for (const flash::DriverRegion& region : Layout(port)) {
            all[region.code] = ReadRegion(port, region.code, std::min(region.size, 512u * 1024));
        }
        return all;
    }

    // Stops at the first chunk that is not taken; its answer.
    Answer WriteRegion(uint32_t port, uint16_t region, const Bytes& image) {
        const auto size = static_cast<uint32_t>(image.size());
        if (size <= flash::kChunkBytes) {
            return AskFlash(port, FlashWrite, region, 0, image, size, 0);
        }
        Answer answer;
        for (uint32_t at = 0, index = 0; at < size; at += flash::kChunkBytes, ++index) {
            const uint32_t end = std::min(size, at + flash::kChunkBytes);
            const uint32_t kib = (end - at + 1023) / 1024;
            Bytes chunk(image.begin() + at, image.begin() + end);
            chunk.resize(kib * 1024);
            answer = WriteChunk(port, region, kib, index, chunk);
            if (answer.completion != Done || answer.Status() != Success) {
                break;
            }
        }
        return answer;
    }

    DriverStatus Restart(uint32_t port, flash::Restart kind) {
        return Ask(port, RestartFirmware, 0, {static_cast<uint8_t>(kind)}).Status();
    }
    std::string RunningFirmware(uint32_t port) {
        return Ask(port, FirmwareProperties, sizeof(properties::FirmwareReply))
            .As<properties::FirmwareReply>()
            .version;
    }
    std::unique_ptr<vxemu::FlashReport> Report(uint32_t scsiPort) {
        auto report = std::make_unique<vxemu::FlashReport>();
        std::memcpy(report.get(), &scsiPort, sizeof scsiPort);
        uint32_t returned = 0;
        EXPECT_EQ(model_->Control(control::kFlashShow, reinterpret_cast<uint8_t*>(report.get()),
                                  sizeof scsiPort, sizeof *report, &returned),
                  Done);
        EXPECT_EQ(returned, sizeof *report);
        return report;
    }
    vxemu::FlashRegionStatus StatusOf(uint32_t scsiPort, uint16_t region) {
        const auto report = Report(scsiPort);
        for (uint32_t at = 0; at < report->count; ++at) {
            if (report->regions[at].code == region) {
                return report->regions[at];
            }
        }
        ADD_FAILURE() << "no region " << region;
        return {};
    }
};

}  // namespace emulator_test
