// fw inspect, fw check
#include "common/text.h"
#include "vxmgr/app/size_text.h"
#include "vxmgr/app/values.h"
#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/update/commands.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

using tools::Argument;
using tools::ArgumentKind;
using tools::ExitCode;
using tools::Record;
using tools::Tone;
using tools::Value;

constexpr Argument kInspectArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
};
constexpr Argument kCheckArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
    {"--region", ArgumentKind::Text, "REGION", "region by key or code (where its kind belongs)"},
    {"--pad", ArgumentKind::Flag, "", "as `flash write --pad` would write it"},
    {"--allow-older", ArgumentKind::Flag, "", "an older version than there is is no reason"},
};

// One part of an image: a ROM of a chain, or a segment.
struct ImagePart {
    std::string name;
    size_t offset = 0;
    size_t size = 0;
    std::string version;
    std::vector<uint16_t> chips;
    Sum checksum = Sum::None;
};

Value ChecksumValue(Sum sum) {
    switch (sum) {
        case Sum::Good:
            return Value::Text("good").In(Tone::Good);
        case Sum::Bad:
            return Value::Text("bad").In(Tone::Bad);
        default:
            return {};
    }
}

Record PartRow(const ImagePart& part) {
    Record row;
    row.Add("part", "Part", Value::Text(part.name), "PART");
    row.Add("offset", "Offset", HexValue(part.offset, 8), "OFFSET");
    row.Add("size", "Size", Value::Number(part.size, "bytes").Shown(SizeText(part.size)), "SIZE");
    row.Add("version", "Version", Value::TextOrNull(part.version), "VERSION");
    row.Add("chips", "For", Value::TextOrNull(ChipsText(part.chips)), "FOR");
    row.Add("checksum", "Checksum", ChecksumValue(part.checksum), "CHECKSUM");
    return row;
}

std::vector<Record> PartsOf(const ImageInfo& image) {
    std::vector<Record> rows;
    for (const RomImage& rom : image.boot.images) {
        rows.push_back(PartRow({CodeTypeName(rom.codeType), rom.offset, rom.length, rom.version,
                                rom.devices, rom.checksum}));
    }
    if (image.kind == ImageKind::Firmware) {
        int number = 0;
        for (const FirmwareSegment& segment : image.firmware.segments) {
            rows.push_back(PartRow({"segment " + std::to_string(++number), segment.offset,
                                    segment.length, image.version, image.chips, segment.checksum}));
        }
    }
    return rows;
}

ExitCode FirmwareInspect(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const ImageInfo image = InspectImage(LoadImage(invocation, path));
    Record& result = invocation.Result();
    result.Add("file", "File", Value::Text(path));
    result.Add("size", "Size", Value::Number(image.size, "bytes").Shown(SizeText(image.size)));
    result.Add("content", "Content", Value::Text(KindKey(image.kind)).Shown(KindName(image.kind)));
    result.Add("version", "Version", Value::TextOrNull(image.version));
    result.Add("vendor", "Vendor", image.vendorId != 0 ? HexValue(image.vendorId, 4) : Value());
    result.Add("chips", "For", Value::TextOrNull(ChipsText(image.chips)));
    result.Add("problem", "Problem", Value::TextOrNull(image.problem));
    result.AddList("parts", "Parts", tools::ListLayout::Table, PartRow({}), "no parts",
                   PartsOf(image));
    if (image.kind == ImageKind::Unknown) {
        invocation.Fail(ExitCode::Refused, path + " is no image of a known kind");
    }
    if (!image.problem.empty()) {
        invocation.Fail(ExitCode::Refused, "the image is damaged: " + image.problem);
    }
    return ExitCode::Done;
}

ExitCode FirmwareCheck(tools::Invocation& invocation) {
    const auto& given = invocation.Given();
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const UpdatePlan plan = PlanUpdate(
        invocation, session,
        {given.Text("FILE"), given.Text("region"), given.Has("pad"), {given.Has("allow-older")}});
    AddPlan(invocation.Result(), session, plan);
    const ExitCode exit = ReportFindings(invocation, plan);
    invocation.Result().Add("accepted", "May be written", Value::Flag(exit == ExitCode::Done));
    if (exit == ExitCode::Done) {
        invocation.Note(
            plan.same ? "nothing would have to be written: the region holds these bytes"
                      : "the image may be written",
            plan.mayRestart ? "the firmware of all ports of the adapter may restart with it" : "");
    }
    return exit;
}

}  // namespace

tools::CommandRows FwInspectCommands() {
    static const tools::Command kCommands[] = {
        {
            .path = "fw inspect",
            .risk = tools::Risk::Reads,
            .help = "what an image file is, and whether it is whole",
            .schema = "fw.inspect",
            .arguments = kInspectArguments,
            .run = FirmwareInspect,
            .example = "fw inspect image.bin",
        },
        {
            .path = "fw check",
            .risk = tools::Risk::Reads,
            .help = "whether an image may be written to an adapter, and what happens then",
            .schema = "fw.check",
            .arguments = kCheckArguments,
            .run = FirmwareCheck,
            .example = "fw check image.bin -a serial:EMU7740A0001",
        },
    };
    return kCommands;
}

}  // namespace vxmgr
