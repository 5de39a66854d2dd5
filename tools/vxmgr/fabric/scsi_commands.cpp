#include "formats/scsi_data.h"
#include "vxmgr/app/files.h"
#include "vxmgr/app/getters.h"
#include "vxmgr/app/port_fields.h"
#include "vxmgr/commands.h"
#include "vxmgr/fabric/scsi_inquiry.h"
#include "vxmgr/fabric/scsi_unit.h"
#include "vxmgr/fabric/scsi_units.h"

namespace vxmgr {
namespace {

using namespace formats;

// More than that a driver below 7.05.03 does not move.
constexpr size_t kLegacyRoom = 4096;
constexpr size_t kLongestList = size_t{1} << 20;
constexpr size_t kLongestTransfer = size_t{16} << 20;

constexpr Argument kInquiryArguments[] = {
    kTargetArgument,
    kLunArgument,
    NumberOption(
        "--page", "PAGE",
        "a vital product data page (0: which there are, 0x80: serial number, 0x83: identifiers)", 0,
        255),
};
constexpr Argument kUnitArguments[] = {kTargetArgument, kLunArgument};
constexpr Argument kTargetArguments[] = {kTargetArgument};
constexpr Argument kRawArguments[] = {
    {.name = "CDB",
     .help = "command descriptor block, hexadecimal: 12 00 00 00 24 00",
     .required = true,
     .repeated = true},
    kTargetArgument,
    kLunArgument,
    NumberOption("--in", "N", "bytes to receive", 1, kLongestTransfer),
    TextOption("--out-file", "FILE", "where the received data goes"),
    TextOption("--data-file", "FILE", "data to send"),
};

// Commands that change nothing in the unit: no question is asked for them.
constexpr uint8_t kHarmless[] = {
    0x00,  // TEST UNIT READY
    0x03,  // REQUEST SENSE
    0x08,  // READ (6)
    0x12,  // INQUIRY
    0x1A,  // MODE SENSE (6)
    0x25,  // READ CAPACITY (10)
    0x28,  // READ (10)
    0x37,  // READ DEFECT DATA (10)
    0x3C,  // READ BUFFER (10)
    0x4D,  // LOG SENSE
    0x5A,  // MODE SENSE (10)
    0x5E,  // PERSISTENT RESERVE IN
    0x88,  // READ (16)
    0x9E,  // SERVICE ACTION IN (16)
    0xA0,  // REPORT LUNS
    0xA3,  // MAINTENANCE IN
    0xA8,  // READ (12)
};

constexpr uint8_t Low(size_t value) {
    return static_cast<uint8_t>(value);
}

using DataList = std::optional<std::vector<HexRow>>;

// A result that begins with the unit's port.
template <class Result>
struct UnitReport : GrowingResult<Result> {
    UnitReport(Invocation& invocation, const ScsiUnit& unit, const Fields<Result>& fields)
        : GrowingResult<Result>(invocation.Result(), fields) {
        this->port = &unit.Session().port;
    }
};

// A table of a command's result: its own fields between those that every one has.
template <class Result>
Fields<Result> UnitFields(std::initializer_list<FieldRow<Result>> own) {
    std::vector<FieldRow<Result>> rows = {{PortKeys(kNoPortKey), &Result::port}};
    rows.insert(rows.end(), own);
    rows.push_back({"sense", "Sense data", kSenseFields, &Result::sense,
                    "when the unit answered with a check condition"});
    return rows;
}

struct InquiryResult : UnitResult {
    std::optional<InquiryData> inquiry;
    std::optional<ScsiVpdPage> vpd;
    DataList data;
};

const auto kInquiryResultFields = UnitFields<InquiryResult>({
    {"inquiry", "Logical unit", kInquiryFields, &InquiryResult::inquiry},
    {"vpd", "Vital product data", kScsiVpdFields, &InquiryResult::vpd, "with --page"},
    {"data", "Data", kHexRowFields, &InquiryResult::data, "no data",
     "the bytes as they came, sixteen a row"},
});

struct CapacityResult : UnitResult {
    std::optional<Capacity> capacity;
};

const auto kCapacityResultFields =
    UnitFields<CapacityResult>({{kCapacityFields, &CapacityResult::capacity}});

struct LunsResult : UnitResult {
    std::optional<std::vector<LunEntry>> luns;
    std::optional<bool> probed;
    std::optional<bool> truncated;
};

const auto kLunsResultFields = UnitFields<LunsResult>({
    {"luns", "Logical units", kLunEntryFields, &LunsResult::luns, "no logical units"},
    {"made_by_probing", "Made by probing", kFlag.OrAbsent(), &LunsResult::probed,
     "the target refuses REPORT LUNS: LUNs 0 to 7 were asked one by one"},
    {"truncated", "Truncated", kFlag.OrAbsent(), &LunsResult::truncated},
});

struct RawResult : UnitResult {
    std::vector<uint8_t> cdb;
    size_t sent = 0;
    std::optional<HX_STATUS> status;
    std::string file;
    DataList data;
};

const auto kRawResultFields = UnitFields<RawResult>({
    {"cdb", "CDB", kText, [](const RawResult& raw) { return HexDigits(raw.cdb); }},
    {"sent", "Data sent", Integer("bytes"), &RawResult::sent},
    {"status", "Status", kText.OrAbsent(), Of(&RawResult::status, StatusName), "none of a dry run"},
    {"file", "File", kText.OrAbsent(), &RawResult::file},
    {"data", "Data", kHexRowFields, &RawResult::data, "no data"},
});

ExitCode StandardInquiry(Invocation& invocation, ScsiUnit& unit, InquiryResult& result) {
    constexpr uint8_t kRoom = 255;
    const uint8_t cdb[6] = {kInquiry, 0, 0, 0, kRoom, 0};
    const ScsiReply reply = unit.Send(cdb, kRoom);
    if (reply.status != HXMGT_SUCCESS) {
        return unit.Fails(reply, "INQUIRY", result);
    }
    result.inquiry = DecodeInquiry(reply.data);
    result.data = DataRows(invocation, Part(reply.data, 0, InquiryLength(reply.data)));
    return ExitCode::Done;
}

ExitCode VitalProductData(Invocation& invocation, ScsiUnit& unit, uint8_t page,
                          InquiryResult& result) {
    constexpr uint8_t kEnableVpd = 1;
    const uint8_t cdb[6] = {kInquiry, kEnableVpd, page, Low(kLegacyRoom >> 8), Low(kLegacyRoom), 0};
    const ScsiReply reply = unit.Send(cdb, kLegacyRoom);
    if (reply.status != HXMGT_SUCCESS) {
        return unit.Fails(reply, "INQUIRY of page " + Hex(page, 2), result);
    }
    if (reply.data[1] != page) {
        invocation.Fail(ExitCode::NotSupported,
                        "the unit answered with page " + Hex(reply.data[1], 2),
                        "`scsi inquiry --page 0` shows the pages that it has");
    }
    result.vpd = DecodeScsiVpd(reply.data);
    if (invocation.Verbose() || VpdPageName(page).empty()) {
        result.data = DataRows(invocation, Part(reply.data, 0, VpdLength(reply.data)));
    }
    return ExitCode::Done;
}

bool IsHarmless(uint8_t operation) {
    return std::find(std::begin(kHarmless), std::end(kHarmless), operation) != std::end(kHarmless);
}

std::vector<uint8_t> GivenCdb(Invocation& invocation) {
    constexpr size_t kLongestCdb = 255;
    const std::string text = TextsJoined(invocation.Given().All("CDB"), " ");
    std::vector<uint8_t> cdb;
    if (!ParseHex(text, &cdb) || cdb.size() > kLongestCdb) {
        invocation.Fail(ExitCode::Usage, "\"" + text + "\" is no command descriptor block",
                        "1 to 255 bytes of two hexadecimal digits: 12 00 00 00 24 00");
    }
    return cdb;
}

ExitCode ScsiInquiry(Invocation& invocation) {
    ScsiUnit unit(invocation);
    UnitReport<InquiryResult> result(invocation, unit, kInquiryResultFields);
    const auto page = invocation.Given().Number("page");
    return page ? VitalProductData(invocation, unit, Low(*page), result)
                : StandardInquiry(invocation, unit, result);
}

ExitCode ScsiCapacity(Invocation& invocation) {
    ScsiUnit unit(invocation);
    UnitReport<CapacityResult> result(invocation, unit, kCapacityResultFields);
    constexpr size_t kShort = 8;
    constexpr uint8_t kLong = 32;
    const uint8_t shortCdb[10] = {kReadCapacity10};
    ScsiReply reply = unit.Send(shortCdb, kShort);
    std::optional<Capacity> capacity = DecodeCapacity10(reply.data);
    if (reply.status == HXMGT_SUCCESS && capacity && NeedsLongForm(*capacity)) {
        const uint8_t longCdb[16] = {
            kServiceActionIn16, kReadCapacity16, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, kLong};
        reply = unit.Send(longCdb, kLong);
        capacity = DecodeCapacity16(reply.data);
    }
    if (reply.status != HXMGT_SUCCESS) {
        return unit.Fails(reply, "READ CAPACITY", result);
    }
    result.capacity = capacity.value_or(Capacity{});
    return ExitCode::Done;
}

ExitCode ScsiLuns(Invocation& invocation) {
    ScsiUnit unit(invocation);
    UnitReport<LunsResult> result(invocation, unit, kLunsResultFields);
    ScsiReply reply = unit.ReportLuns(kLegacyRoom);
    const uint64_t wanted = LunListLength(reply.data);
    if (reply.status == HXMGT_SUCCESS && wanted > kLegacyRoom && !unit.IsLegacy()) {
        reply = unit.ReportLuns(static_cast<size_t>(std::min<uint64_t>(wanted, kLongestList)));
    }
    const bool probed = reply.status == HXMGT_BUILT_BY_API;
    if (reply.status != HXMGT_SUCCESS && !probed) {
        return unit.Fails(reply, "REPORT LUNS", result);
    }
    const bool truncated = LunListLength(reply.data) > reply.data.size();
    result.luns = DecodeLuns(reply.data);
    result.probed = probed;
    result.truncated = truncated;
    if (probed) {
        invocation.Warn("the target refuses REPORT LUNS: the list was made by asking LUNs 0 to 7",
                        "LUNs above 7 may be there and are not listed");
    }
    if (truncated) {
        invocation.Warn("the list is longer than could be fetched: the end is missing");
    }
    return ExitCode::Done;
}

ExitCode ScsiRaw(Invocation& invocation) {
    const std::vector<uint8_t> cdb = GivenCdb(invocation);
    const Options& given = invocation.Given();
    const bool sends = given.Has("data-file");
    if (sends && given.Has("in")) {
        invocation.Fail(ExitCode::Usage, "--in and --data-file exclude each other",
                        "a command moves data one way");
    }
    if (given.Has("out-file") && !given.Has("in")) {
        invocation.Fail(ExitCode::Usage, "--out-file needs --in", "say how much data comes");
    }
    const std::vector<uint8_t> dataOut =
        sends ? LoadFile(invocation, given.Text("data-file"), kLongestTransfer)
              : std::vector<uint8_t>();
    const size_t room = static_cast<size_t>(given.Number("in").value_or(0));
    ScsiUnit unit(invocation);
    if (unit.IsLegacy() && std::max(room, dataOut.size()) > kLegacyRoom) {
        invocation.Fail(ExitCode::NotSupported,
                        "this driver moves at most " + std::to_string(kLegacyRoom) + " bytes");
    }
    UnitReport<RawResult> result(invocation, unit, kRawResultFields);
    result.cdb = cdb;
    result.sent = dataOut.size();
    if (invocation.DryRun()) {
        return invocation.DoneWith("dry run: the command would be sent");
    }
    const bool harmless = IsHarmless(cdb[0]) && !sends;
    if (!harmless) {
        invocation.Confirm(QuestionAbout(
            unit.Session(),
            "SCSI command " + HexDigits(cdb) + " to " + given.Text("target") + ", LUN " +
                given.Text("lun", "0"),
            "The command may change or destroy data there; nothing is checked before."));
    }
    const ScsiReply reply = unit.Send(cdb, room, dataOut);
    result.status = reply.status;
    if (!harmless) {
        invocation.Changed();
    }
    if (reply.status != HXMGT_SUCCESS) {
        return unit.Fails(reply, "the command", result);
    }
    if (given.Has("out-file")) {
        SaveFile(invocation, given.Text("out-file"), reply.data);
        result.file = given.Text("out-file");
    } else {
        result.data = DataRows(invocation, reply.data);
    }
    return ExitCode::Done;
}

}  // namespace

CommandRows ScsiCommands() {
    static const Command kCommands[] = {
        {.path = "scsi inquiry",
         .help = "ask a logical unit what it is",
         .arguments = kInquiryArguments,
         .run = ScsiInquiry,
         .example = "scsi inquiry --page 0x83 -t wwn:2b:00:02:45:4d:00:01:00 -p scsi:3",
         .result = ShapeOf<kInquiryResultFields>},
        {.path = "scsi capacity",
         .help = "ask a logical unit for its capacity",
         .arguments = kUnitArguments,
         .run = ScsiCapacity,
         .example = "scsi capacity -t 0:0 --lun 1 -p scsi:3",
         .result = ShapeOf<kCapacityResultFields>},
        {.path = "scsi luns",
         .help = "list the logical units of a target",
         .arguments = kTargetArguments,
         .run = ScsiLuns,
         .example = "scsi luns -t 0:0 -p scsi:3",
         .result = ShapeOf<kLunsResultFields>},
        {.path = "scsi raw",
         .risk = Risk::InterruptsIo,
         .help = "send a SCSI command; asks unless it only reads",
         .arguments = kRawArguments,
         .run = ScsiRaw,
         .example = "scsi raw 12 00 00 00 24 00 --in 36 -t 0:0 -p scsi:3",
         .result = ShapeOf<kRawResultFields>},
    };
    return kCommands;
}

}  // namespace vxmgr
