// fw inspect, fw check
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
using tools::kText;
using tools::Value;

constexpr Argument kInspectArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
};
constexpr Argument kCheckArguments[] = {
    {.name = "FILE", .help = "the image", .required = true},
    {.name = "--region",
     .valueName = "REGION",
     .help = "region by key or code (where its kind belongs)"},
    {.name = "--pad", .kind = ArgumentKind::Flag, .help = "as `flash write --pad` would write it"},
    {.name = "--allow-older",
     .kind = ArgumentKind::Flag,
     .help = "an older version than there is is no reason"},
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
           : part.checksum == Sum::Good ? Value::Text(kSums[0]).In(tools::Tone::Good)
                                        : Value::Text(kSums[1]).In(tools::Tone::Bad);
}

const tools::Fields<ImagePart>& PartFields() {
    using Part = ImagePart;
    static const tools::Fields<Part> kFields = {
        {"part", "Part", "PART", kText, &Part::name},
        {"offset", "Offset", "OFFSET", kText,
         [](const Part& part) { return HexValue(part.offset, 8); }},
        {"size", "Size", "SIZE", tools::kInteger,
         [](const Part& part) { return SizeValue(part.size); }},
        {"version", "Version", "VERSION", kText.OrNull(), &Part::version},
        {"chips", "For", "FOR", kText.OrNull(),
         [](const Part& part) { return ChipsText(part.chips); }},
        {"checksum", "Checksum", "CHECKSUM", tools::Choice(kSums).OrNull(), SumValue,
         "null: the format has none"},
    };
    return kFields;
}

struct Inspected {
    std::string file;
    ImageInfo image;

    std::vector<ImagePart> Parts() const {
        std::vector<ImagePart> parts;
        for (const RomImage& rom : image.boot.images) {
            parts.push_back({CodeTypeName(rom.codeType), rom.offset, rom.length, rom.version,
                             rom.devices, rom.checksum});
        }
        if (image.kind == ImageKind::Firmware) {
            for (const FirmwareSegment& segment : image.firmware.segments) {
                parts.push_back({"segment " + std::to_string(parts.size() + 1), segment.offset,
                                 segment.length, image.version, image.chips, segment.checksum});
            }
        }
        return parts;
    }
};

const tools::Fields<Inspected>& InspectFields() {
    static const tools::Fields<Inspected> kFields = {
        {"file", "File", kText, &Inspected::file},
        {"size", "Size", tools::kInteger,
         [](const Inspected& one) { return SizeValue(one.image.size); }},
        {"content", "Content", tools::Choice(kImageKinds),
         [](const Inspected& one) { return KindValue(one.image.kind); }},
        {"version", "Version", kText.OrNull(),
         [](const Inspected& one) { return one.image.version; }},
        {"vendor", "Vendor", kText.OrNull(),
         [](const Inspected& one) {
             return one.image.vendorId != 0 ? HexValue(one.image.vendorId, 4) : Value();
         }},
        {"chips", "For", kText.OrNull(),
         [](const Inspected& one) { return ChipsText(one.image.chips); },
         "PCI device IDs, with blanks between them"},
        {"problem", "Problem", kText.OrNull(),
         [](const Inspected& one) { return one.image.problem; }, "why the image is damaged"},
        {"parts", "Parts", PartFields(), &Inspected::Parts, tools::ListLayout::Table, "no parts"},
    };
    return kFields;
}

struct Checked {
    UpdatePlan plan;
    bool accepted;
};

const tools::Fields<Checked>& CheckFields() {
    static const tools::Fields<Checked> kFields = {
        {PlanFields(), &Checked::plan},
        {"accepted", "May be written", tools::kFlag, &Checked::accepted,
         "`flash write` would write it"},
    };
    return kFields;
}

ExitCode FirmwareInspect(tools::Invocation& invocation) {
    const std::string path = invocation.Given().Text("FILE");
    const ImageInfo image = InspectImage(ReadImage(invocation, path));
    invocation.Result() = InspectFields().Make({path, image});
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
        invocation, session, LookBeforeUpdate(invocation, session),
        {given.Text("FILE"), given.Text("region"), given.Has("pad"), {given.Has("allow-older")}});
    const ExitCode exit = ReportFindings(invocation, plan);
    invocation.Result() = CheckFields().Make({plan, exit == ExitCode::Done});
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
            .result = tools::ShapeOf<InspectFields>,
        },
        {
            .path = "fw check",
            .risk = tools::Risk::Reads,
            .help = "whether an image may be written to an adapter, and what happens then",
            .schema = "fw.check",
            .arguments = kCheckArguments,
            .run = FirmwareCheck,
            .example = "fw check image.bin -a serial:EMU7740A0001",
            .result = tools::ShapeOf<CheckFields>,
        },
    };
    return kCommands;
}

}  // namespace vxmgr
