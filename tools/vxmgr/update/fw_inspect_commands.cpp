// fw inspect, fw check
#include "vxmgr/app/values.h"
#include "vxmgr/commands.h"
#include "vxmgr/flash/flash_image_check.h"
#include "vxmgr/update/update_plan.h"
#include "vxmgr/update/update_stored.h"

namespace vxmgr {
namespace {

constexpr Argument kInspectArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
};
constexpr Argument kCheckArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
    TextOption("--region", "REGION", "region by key or code (where its kind belongs)"),
    FlagOption("--pad", "as `flash write --pad` would write it"),
    FlagOption("--allow-older", "an older version than there is is no reason"),
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

constexpr const char* kSums[] = {"good", "bad"};

Value SumValue(const ImagePart& part) {
    return part.checksum == Sum::None   ? Value()
           : part.checksum == Sum::Good ? Value::Text(kSums[0]).In(Tone::Good)
                                        : Value::Text(kSums[1]).In(Tone::Bad);
}

const Fields<ImagePart> kPartFields = {
    {"part", "Part", "PART", kText, &ImagePart::name},
    {"offset", "Offset", "OFFSET", Hexadecimal(8), &ImagePart::offset},
    {"size", "Size", "SIZE", kInteger, SizeOf<&ImagePart::size>},
    {"version", "Version", "VERSION", kText.OrNull(), &ImagePart::version},
    {"chips", "For", "FOR", kText.OrNull(),
     [](const ImagePart& part) { return ChipsText(part.chips); }},
    {"checksum", "Checksum", "CHECKSUM", Choice(kSums).OrNull(), SumValue,
     "null: the format has none"},
};

struct Inspected : ImageInfo {
    std::string file;

    std::vector<ImagePart> Parts() const {
        std::vector<ImagePart> parts;
        for (const RomImage& rom : boot.images) {
            parts.push_back({CodeTypeName(rom.codeType), rom.offset, rom.length, rom.version,
                             rom.devices, rom.checksum});
        }
        if (kind == ImageKind::Firmware) {
            for (const FirmwareSegment& segment : firmware.segments) {
                parts.push_back({"segment " + std::to_string(parts.size() + 1), segment.offset,
                                 segment.length, version, chips, segment.checksum});
            }
        }
        return parts;
    }
};

const Fields<Inspected> kInspectFields = {
    {"file", "File", kText, &Inspected::file},
    {"size", "Size", kInteger, SizeOf<&Inspected::size>},
    {"content", "Content", Choice(kImageKinds),
     [](const Inspected& one) { return KindValue(one.kind); }},
    {"version", "Version", kText.OrNull(), &Inspected::version},
    {"vendor", "Vendor", kText.OrNull(),
     [](const Inspected& one) { return one.vendorId != 0 ? HexValue(one.vendorId, 4) : Value(); }},
    {"chips", "For", kText.OrNull(), [](const Inspected& one) { return ChipsText(one.chips); },
     "PCI device IDs, with blanks between them"},
    {"problem", "Problem", kText.OrNull(), &Inspected::problem, "why the image is damaged"},
    {"parts", "Parts", kPartFields, &Inspected::Parts, "no parts"},
};

struct Checked {
    UpdatePlan plan;
    bool accepted;
};

const Fields<Checked> kCheckFields = {
    {kPlanFields, &Checked::plan},
    {"accepted", "May be written", kFlag, &Checked::accepted, "`flash write` would write it"},
};

ExitCode FirmwareInspect(Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const Inspected image{InspectImage(ReadImage(invocation, path)), path};
    invocation.Result() = kInspectFields.Make(image);
    if (image.kind == ImageKind::Unknown) {
        invocation.Fail(ExitCode::Refused, path + " is no image of a known kind");
    }
    if (!image.problem.empty()) {
        invocation.Fail(ExitCode::Refused, "the image is damaged: " + image.problem);
    }
    return ExitCode::Done;
}

ExitCode FirmwareCheck(Invocation& invocation) {
    const auto& given = invocation.Given();
    const AdapterSession session = OpenSelectedAdapter(invocation);
    const UpdatePlan plan = PlanUpdate(
        invocation, session, LookBeforeUpdate(invocation, session),
        {given.Text("FILE"), given.Text("region"), given.Has("pad"), {given.Has("allow-older")}});
    const ExitCode exit = ReportFindings(invocation, plan);
    invocation.Result() = kCheckFields.Make({plan, exit == ExitCode::Done});
    if (exit == ExitCode::Done) {
        invocation.Note(
            plan.same ? "nothing would have to be written: the region holds these bytes"
                      : "the image may be written",
            plan.mayRestart ? "the firmware of all ports of the adapter may restart with it" : "");
    }
    return exit;
}

}  // namespace

CommandRows FwInspectCommands() {
    static const Command kCommands[] = {
        {.path = "fw inspect",
         .help = "what an image file is, and whether it is whole",
         .arguments = kInspectArguments,
         .run = FirmwareInspect,
         .example = "fw inspect image.bin",
         .result = ShapeOf<kInspectFields>},
        {.path = "fw check",
         .help = "whether an image may be written to an adapter, and what happens then",
         .arguments = kCheckArguments,
         .run = FirmwareCheck,
         .example = "fw check image.bin -a serial:EMU7740A0001",
         .result = ShapeOf<kCheckFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
