// The tools' frame: codes, selections and what results look like in every form.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "hxstatus.h"
#include "support/document.h"
#include "support/has.h"
#include "support/json_schema.h"
#include "support/shown.h"
#include "tools/common/exit_codes.h"
#include "tools/common/json_document.h"
#include "tools/common/selector.h"
#include "tools/common/status_codes.h"
#include "tools/records/csv.h"
#include "tools/records/fields.h"
#include "tools/records/redaction.h"
#include "tools/records/render.h"
#include "tools/records/text.h"

namespace {

using namespace tools;
using std::chrono::milliseconds;
using support::Document;

std::string ReadFile(const std::string& name) {
    std::ifstream stream(std::string(VXMGMT_SOURCE_FOLDER "/") + name, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

std::string Lines(const std::vector<std::string>& errors) {
    std::string text;
    for (const std::string& error : errors) {
        text += error + "\n";
    }
    return text;
}

Wwn Name(const char* text) {
    return Wwn::Parse(text).value();
}

TEST(ToolsCodes, ExitCodesAreDistinctAndInTheManual) {
    const std::string manual = ReadFile("docs/vxmgr.md");
    std::set<int> numbers;
    std::set<std::string> names;
    for (const ExitCodeRow& row : ExitCodes()) {
        EXPECT_TRUE(numbers.insert(Number(row.code)).second) << row.name;
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        const std::string line =
            "| " + std::to_string(Number(row.code)) + " | " + row.meaning + " |\n";
        EXPECT_TRUE(support::Has(manual, line)) << "not in the manual: " << line;
        EXPECT_EQ(FindExitCode(Number(row.code)), &row);
    }
    EXPECT_EQ(FindExitCode(12), nullptr);
    EXPECT_EQ(FindExitCode(-1), nullptr);
}

TEST(ToolsCodes, StatusLeadsToExitCode) {
    const struct {
        uint32_t status;
        ExitCode exit;
    } kRows[] = {
        {0, ExitCode::Done},
        {HXMGT_DEVICE_BUSY, ExitCode::Busy},
        {170, ExitCode::Busy},
        {HXMGT_NOT_SUPPORTED, ExitCode::NotSupported},
        {HXMGT_INVALID_SUBCODE, ExitCode::NotSupported},
        {HXMGT_INVALID_REQUEST, ExitCode::NotSupported},
        {HXMGT_DEVICE_NOT_FOUND, ExitCode::NotFound},
        {5, ExitCode::AccessDenied},
        {HXMGT_TIMED_OUT, ExitCode::TimedOut},
        {HXMGT_OPTION_ROM_CHECKSUM_ERROR, ExitCode::Refused},
        {HXMGT_FLASH_UPDATE_NOT_ACTIVATED, ExitCode::NotProven},
        {HXMGT_OPTION_ROM_WRITE_ERROR, ExitCode::Failed},
        {0x2FFFFFFF, ExitCode::Failed},
        {87, ExitCode::Failed},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(ExitCodeOf(row.status), row.exit) << Hex(row.status, 8);
    }
}

TEST(ToolsCodes, EveryStatusHasItsNameBothWays) {
#define VX_CHECK_WITH_TEXT(name, code, text) VX_CHECK(name, code)
#define VX_CHECK(name, code)                                       \
    {                                                              \
        uint32_t status = 1;                                       \
        EXPECT_EQ(StatusName(code), #name);                        \
        EXPECT_TRUE(FindStatus("hxmgt_" #name, &status)) << #name; \
        EXPECT_EQ(status, static_cast<uint32_t>(code));            \
    }
    HX_STATUS_TABLE(VX_CHECK_WITH_TEXT)
    HX_STATUS_WITHOUT_TEXT(VX_CHECK)
#undef VX_CHECK
#undef VX_CHECK_WITH_TEXT
    uint32_t status = 0;
    EXPECT_FALSE(FindStatus("", &status));
    EXPECT_FALSE(FindStatus("HXMGT_", &status));
    EXPECT_EQ(StatusName(170), "WINDOWS_170");
    EXPECT_EQ(StatusName(0x40000000), "WINDOWS_1073741824");
    EXPECT_EQ(StatusName(0x60000000), "UNKNOWN");
    EXPECT_EQ(KindOf(0x60000000), StatusKind::Library);
    EXPECT_EQ(StatusText(HXMGT_DEVICE_BUSY), "0x20000067");
}

TEST(ToolsText, HostileFieldsAndNumbers) {
    EXPECT_EQ(FieldText("ab\0cd", 5), "ab");
    EXPECT_EQ(FieldText("four", 4), "four");
    EXPECT_EQ(FieldText("  \x1b[31m\xff\n  ", 11), "  ?[31m??");
    EXPECT_EQ(FieldText("   ", 3), "");
    EXPECT_EQ(ParseNumber("4294967296"), 4294967296u);
    EXPECT_EQ(ParseNumber("0xFFFFFFFFFFFFFFFF"), UINT64_MAX);
    for (const char* bad : {"", "0x", "-1", "+1", " 1", "1 ", "1x", "18446744073709551616"}) {
        EXPECT_FALSE(ParseNumber(bad).has_value()) << bad;
    }
    using std::chrono::system_clock;
    EXPECT_EQ(FormatUtc(system_clock::time_point(milliseconds(951782400007))),
              "2000-02-29T00:00:00.007Z");
    EXPECT_EQ(FormatUtc(system_clock::time_point(milliseconds(-1))), "1969-12-31T23:59:59.999Z");
    EXPECT_EQ(DisplayWidth("a\xc3\xa4\xe2\x82\xac"), 3u);
}

TEST(ToolsWwn, ReadsEveryNotationAndNothingElse) {
    for (const char* text : {"21:00:00:0e:1E:00:00:01", "21-00-00-0e-1e-00-00-01",
                             "2100000e1e000001", "2100000E1E000001"}) {
        const auto wwn = Wwn::Parse(text);
        ASSERT_TRUE(wwn.has_value()) << text;
        EXPECT_EQ(wwn->Digits(), "2100000e1e000001");
        EXPECT_EQ(wwn->Colons(), "21:00:00:0e:1e:00:00:01");
    }
    for (const char* text :
         {"", "2100000e1e00000", "2100000e1e0000011", "21:00:00:0e:1e:00:00-01",
          "21:00:00:0e:1e:00:00:0g", "2100000e1e00000g", "21.00.00.0e.1e.00.00.01",
          "2:100:00:0e:1e:00:00:01", "21:00:00:0e:1e:00:00:01 ", ":::::::::::::::::::::::"}) {
        EXPECT_FALSE(Wwn::Parse(text).has_value()) << text;
    }
}

class ToolsSelector : public testing::Test {
  protected:
    // Two ports of one adapter; one whose serial is the other's beginning; one that failed.
    const std::vector<Identity> ports_ = {
        {0, {3}, "EMU7740A", {Name("2100000000000001")}},
        {1, {4}, "EMU7740A", {Name("2100000000000002")}},
        {2, {9}, "EMU7740", {Name("2100000000000003"), Name("2000000000000003")}},
        {3, {12}, "", {}},
    };

    std::vector<size_t> Find(const char* text) const {
        Selector selector;
        std::string error;
        EXPECT_TRUE(ParseSelector(text, &selector, &error)) << text << ": " << error;
        return Select(selector, ports_);
    }
};

TEST_F(ToolsSelector, FindsExactMatches) {
    using Positions = std::vector<size_t>;
    EXPECT_EQ(Find("all"), (Positions{0, 1, 2, 3}));
    EXPECT_EQ(Find("2"), Positions{2});
    EXPECT_EQ(Find("index:1"), Positions{1});
    EXPECT_EQ(Find("INDEX:4"), Positions{});
    EXPECT_EQ(Find("scsi:9"), Positions{2});
    EXPECT_EQ(Find("scsi:2"), Positions{});
    EXPECT_EQ(Find("serial:emu7740a"), (Positions{0, 1}));
    EXPECT_EQ(Find("EMU7740"), Positions{2});
    EXPECT_EQ(Find("EMU774"), Positions{});
    EXPECT_EQ(Find("wwn:20-00-00-00-00-00-00-03"), Positions{2});
    EXPECT_EQ(Find("21:00:00:00:00:00:00:02"), Positions{1});
    EXPECT_EQ(Find("2100000000000001"), Positions{0});  // sixteen digits are no index
    // The failed port's missing names must not match an all-zero one.
    EXPECT_EQ(Find("0000000000000000"), Positions{});
}

TEST_F(ToolsSelector, TellsBareNumbersAndRefusesNonsense) {
    Selector selector;
    std::string error;
    ASSERT_TRUE(ParseSelector("7", &selector, &error));
    EXPECT_TRUE(selector.bareNumber);
    ASSERT_TRUE(ParseSelector("index:7", &selector, &error));
    EXPECT_FALSE(selector.bareNumber);
    for (const char* text : {"", "index:", "index:x", "index:-1", "index:0x1", "scsi:",
                             "scsi:4294967296", "99999999999", "serial:", "wwn:", "wwn:21:00"}) {
        error.clear();
        EXPECT_FALSE(ParseSelector(text, &selector, &error)) << text;
        EXPECT_FALSE(error.empty()) << text;
    }
}

Record Row(const char* name, Value number) {
    Record link;
    link.Add("speed", "Speed", std::move(number), "SPEED");
    Record row;
    row.title = name;
    row.Add("name", "Name", Value::Text(name), "NAME");
    row.Add("secret", "", Value::Serial("S-1"));
    row.AddGroup("link", "Link", std::move(link));
    return row;
}

Record ListOf(std::vector<Record> rows, ListLayout layout = ListLayout::Table) {
    Record result;
    result.AddList("rows", "Rows", layout, Row("", {}), "No rows.", std::move(rows));
    return result;
}

TEST(ToolsRender, CsvFollowsRfc4180) {
    EXPECT_EQ(CsvCell("plain text"), "plain text");
    EXPECT_EQ(CsvCell("a,b"), "\"a,b\"");
    EXPECT_EQ(CsvCell("say \"x\""), "\"say \"\"x\"\"\"");
    EXPECT_EQ(CsvCell("two\r\nlines"), "\"two\r\nlines\"");
    EXPECT_EQ(CsvCell(" edge"), "\" edge\"");
    EXPECT_EQ(CsvCell(""), "");

    Redactor open(false);
    EXPECT_EQ(RenderCsv(ListOf({Row("a,b", Value::Number(8, "Gbit/s")), Row("c", {})}), open),
              "name,secret,link_speed\r\n\"a,b\",S-1,8\r\nc,S-1,\r\n");
    // A reader relies on the header even when there is nothing to list.
    EXPECT_EQ(RenderCsv(ListOf({}), open), "name,secret,link_speed\r\n");
    // What stands beside the list is in each line, unless the line has its own.
    Record result = ListOf({Row("a", {}), Row("b", {})});
    result.Add("bank", "Bank", Value::Text("first")).Add("name", "", Value::Text("other"));
    EXPECT_EQ(RenderCsv(result, open),
              "name,secret,link_speed,bank\r\na,S-1,,first\r\nb,S-1,,first\r\n");
}

TEST(ToolsRender, ListsInsideAnObjectAreCarriedOn) {
    const auto reading = [](const char* quantity, Value value) {
        Record row;
        row.Add("quantity", "", Value::Text(quantity), "QUANTITY");
        row.Add("value", "", std::move(value), "VALUE");
        return row;
    };
    const auto module = [&](const char* name, std::vector<Record> readings) {
        Record row;
        row.Add("name", "Name", Value::Text(name), "NAME");
        Field& list = row.AddList("readings", "", ListLayout::Table, reading("", {}), "",
                                  std::move(readings));
        list.spreadBy = "quantity";
        list.prototype = {reading("heat", {}), reading("power", {})};
        return row;
    };
    Record result;
    result.Add("bank", "Bank", Value::Text("first")).Add("hidden", "", Value());
    result.AddList("modules", "", ListLayout::Sections, module("", {}), "",
                   {module("a", {reading("power", Value::Number(7))}), module("b", {})});
    Redactor open(false);
    EXPECT_EQ(RenderCsv(result, open),
              "name,readings_heat_value,readings_power_value,bank,hidden\r\n"
              "a,,7,first,\r\nb,,,first,\r\n");
    EXPECT_EQ(RenderTable(result, {false, &open}),
              "FIELD  VALUE\nbank   first\n\nNAME\na\nb\n\n"
              "NAME  QUANTITY  VALUE\na     power         7\n");
}

TEST(ToolsRender, ListsInsideTheElementsMakeOneTable) {
    Record inner;
    inner.Add("id", "Id", Value(), "ID");
    const auto element = [&](const char* name, std::vector<Record> ids) {
        Record row;
        row.Add("name", "Name", Value::Text(name), "NAME").Add("unseen", "Unseen", Value());
        row.AddList("ids", "", ListLayout::Table, inner, "", std::move(ids));
        return row;
    };
    const auto of = [](uint64_t id) {
        Record row;
        row.Add("id", "Id", Value::Number(id), "ID");
        return row;
    };
    const auto shown = [&](std::vector<Record> elements) {
        Record result;
        result.AddList("rows", "", ListLayout::Inner, element("", {}), "No rows.",
                       std::move(elements));
        Redactor open(false);
        const RenderStyle style{false, &open};
        return RenderText(result, style) + "/" + RenderTable(result, style);
    };
    const std::string rows = "NAME  ID\na      1\na      2\nb     -\n";
    EXPECT_EQ(shown({element("a", {of(1), of(2)}), element("b", {})}), rows + "/" + rows);
    EXPECT_EQ(shown({}), "No rows.\n/NAME\n");
}

TEST(ToolsRender, TablesShortenThemselvesToTheConsole) {
    Redactor open(false);
    Record prototype;
    prototype.Add("name", "", {}, "NAME").Add("count", "", {}, "A LONG HEADING");
    prototype.Add("wwn", "", {}, "PORT").Add("about", "", {}, "ABOUT");
    Record row;
    row.Add("name", "", Value::Text("\xc3\xa4 name of some length"));
    row.Add("count", "", Value::Number(1234567));
    row.Add("wwn", "", Value::Name(Name("2100000e1e000001")));
    row.Add("about", "", Value::Text("to 21:00:00:0e:1e:00:00:02 at last"));
    Record result;
    result.AddList("rows", "", ListLayout::Table, prototype, "", {row});
    const auto lines = [&](size_t width) {
        std::vector<std::string> all = Split(RenderText(result, {false, &open, width}), '\n');
        all.pop_back();
        return all;
    };
    size_t natural = 0;
    for (const std::string& line : lines(0)) {
        natural = std::max(natural, DisplayWidth(line));
    }
    for (size_t width = 46; width < natural + 4; ++width) {
        for (const std::string& line : lines(width)) {
            EXPECT_LE(DisplayWidth(line), width) << line;
        }
        const std::string cells = lines(width).at(1);
        EXPECT_NE(cells.find("1234567"), std::string::npos) << cells;
        EXPECT_NE(cells.find("21:00:00:0e:1e:00:00:01"), std::string::npos) << cells;
        const size_t second = cells.find("to ");
        if (second != std::string::npos && cells.find("00:02", second) == std::string::npos) {
            EXPECT_EQ(cells.find("21", second), std::string::npos) << "cut in two: " << cells;
        }
    }
    EXPECT_EQ(lines(natural), lines(0));
    EXPECT_EQ(lines(5).size(), 2u);  // does not fit at all: as narrow as it gets
}

// A table gives the record, the columns of an empty list and the schema, which agree.
TEST(ToolsFields, RecordsFollowTheSchemaOfTheirTable) {
    struct Part {
        uint64_t frames;
    };
    struct Whole {
        std::string name;
        std::optional<uint32_t> speed;
        const Part* part;
        std::vector<Part> parts;
        std::optional<Part> spliced{};
        std::optional<std::vector<Part>> more{};
    };
    static constexpr const char* kNames[] = {"one", "two"};
    static const Fields<Part> kPart = {{"frames", "Frames", "FRAMES", kCounter, &Part::frames}};
    static const Fields<Whole> kWhole = {
        {"name", "Name", "NAME", Choice(kNames), &Whole::name},
        {"speed", "Speed", Integer("Gbit/s").OrNull(), &Whole::speed},
        {"note", "", kText.OrAbsent(), [](const Whole&) { return std::string(); }},
        {"part", "Part", kPart, &Whole::part},
        {"maybe", "Part", kPart, &Whole::part, "", kGroup.OrNull()},
        {"parts", "Parts", kPart, &Whole::parts},
        {kPart, &Whole::spliced},
        {"more", "More", kPart, &Whole::more},
    };
    const auto schema = Document::Parse(SchemaText("t.whole", "Whole", kWhole.ShapeOfAll()));
    const auto document = [](const Whole& whole) {
        const Record record = kWhole.Make(whole);
        Envelope envelope;
        envelope.result = &record;
        Redactor open(false);
        return Document::Parse(EnvelopeDocument(envelope, open))["result"];
    };
    const Part part{UINT64_MAX};
    for (const Whole& whole :
         {Whole{"one", 8, &part, {part, {1}}}, Whole{"two", std::nullopt, nullptr, {}},
          Whole{"two", 1, nullptr, {}, part, {{part}}}}) {
        EXPECT_EQ(Lines(support::JsonSchemas::CheckAgainst(document(whole), schema)), "");
    }
    EXPECT_FALSE(
        support::JsonSchemas::CheckAgainst(document({"three", 8, nullptr, {}}), schema).empty());
    EXPECT_EQ(document({"two", 8, nullptr, {}}).size(), 4u);
    EXPECT_TRUE(document({"two", 8, nullptr, {}})["maybe"].is_null());
    EXPECT_EQ(document({"two", 8, nullptr, {}, part, {{part}}}).size(), 7u) << "frames_s too";
    EXPECT_EQ(schema["$id"], "t.whole.json");
    // Every key and no other.
    EXPECT_EQ(kWhole.Prototype().Fields().size(), 8u);
    EXPECT_EQ(schema["required"].size(), 4u);
    // What was found out before an error is the result.
    Record result;
    try {
        GrowingResult<Whole> growing(result, kWhole, {"one", {}, nullptr, {}});
        growing.name = "two";
        throw 1;
    } catch (int) {
    }
    EXPECT_EQ(support::Shown(result, "name"), "two");
}

TEST(ToolsFields, ElementsStandBesideEachOtherByTheirKey) {
    struct Side {
        const char* name;
        uint32_t frames;
    };
    using Sides = std::vector<Side>;
    static constexpr const char* kNames[] = {"one", "two"};
    static const Fields<Side> kSide = {{"name", "", Choice(kNames), &Side::name},
                                       {"frames", "", kInteger, &Side::frames}};
    static const Fields<Sides> kSides = {
        {"sides", "", kSide, std::identity(), ListLayout::Table, "", "", "name"}};
    for (const Record& record : {kSides.Make({{"two", 5}}), kSides.Make({}), kSides.Prototype()}) {
        EXPECT_EQ(Flatten(record).size(), 2u) << "columns do not depend on what is there";
        EXPECT_EQ(support::Shown(record, "sides_one_frames"), "-");
    }
    EXPECT_EQ(support::Shown(kSides.Make({{"two", 5}}), "sides_two_frames"), "5");
}

TEST(ToolsRender, TablesAlignWhatIsSeen) {
    Redactor open(false);
    const Record result =
        ListOf({Row("x", Value::Number(8, "Gbit/s")), Row("\xc3\xa4\xc3\xb6\xc3\xbc-port", {})});
    const std::string plain = RenderText(result, {false, &open});
    // Numbers stand to the right with their heading.
    EXPECT_EQ(plain,
              "NAME         SPEED\n"
              "x         8 Gbit/s\n"
              "\xc3\xa4\xc3\xb6\xc3\xbc-port  -\n");
    EXPECT_EQ(RenderTable(result, {false, &open}), plain);
    EXPECT_EQ(RenderText(ListOf({}), {false, &open}), "No rows.\n");
    EXPECT_EQ(
        RenderText(ListOf({Row("x", Value::Number(8))}, ListLayout::Sections), {false, &open}),
        "x\n  Name     x\n\n  Link\n    Speed  8\n");
    const std::string colored =
        RenderText(ListOf({Row("x", Value::Text("bad").In(Tone::Bad))}), {true, &open});
    EXPECT_TRUE(support::Has(colored, "\x1b[31mbad\x1b[0m")) << colored;
}

TEST(ToolsRedaction, SameNameSamePseudonymInEveryNotation) {
    Redactor redactor(true);
    const std::string first = redactor.Mask(Secret::Wwn, "2100000e1e000001");
    EXPECT_EQ(redactor.Mask(Secret::Wwn, "21:00:00:0E:1E:00:00:01"), first);
    EXPECT_NE(redactor.Mask(Secret::Wwn, "2100000e1e000002"), first);
    const std::string serial = redactor.Mask(Secret::Serial, "EMU7740A");
    EXPECT_EQ(redactor.Mask(Secret::Serial, "emu7740a"), serial);
    EXPECT_EQ(redactor.Mask(Secret::None, "open"), "open");
    EXPECT_EQ(redactor.Mask(Secret::Serial, ""), "");

    EXPECT_EQ(redactor.Clean("port 21-00-00-0e-1e-00-00-01 of EMU7740A, xEMU7740A EMU7740AB"),
              "port " + first + " of " + serial + ", xEMU7740A EMU7740AB");
    EXPECT_EQ(redactor.Clean("SERIAL:emu7740a,serial:other"),
              "serial:" + serial + ",serial:serial-2");
    EXPECT_EQ(redactor.Clean("0123456789abcdef0"), "0123456789abcdef0");  // 17 digits: no name
    Redactor off(false);
    EXPECT_EQ(off.Clean("2100000e1e000001"), "2100000e1e000001");
    EXPECT_EQ(off.Mask(Secret::Serial, "EMU7740A"), "EMU7740A");
}

TEST(ToolsRedaction, NothingSecretIsLeftInADocument) {
    Record result;
    result.Add("port_wwn", "", Value::Name(Name("2100000e1e000001")));
    result.Add("serial", "", Value::Serial("EMU7740A"));
    result.Add("device", "", Value::Text("disk of EMU7740A"));
    Envelope envelope;
    envelope.schema = "x";
    envelope.tool = "1";
    envelope.argv = {"-p", "wwn:21:00:00:0e:1e:00:00:01", "--confirm", "EMU7740A"};
    envelope.result = &result;
    envelope.messages = {{Severity::Error, "EMU7740A failed", "look at EMU7740A", "serial:EMU7740A",
                          HXMGT_DEVICE_BUSY}};
    envelope.pending = {{"EMU7740A", "reset", "reset 2100000e1e000001"}};
    Redactor redactor(true);
    const std::string document = Lowercase(EnvelopeDocument(envelope, redactor));
    EXPECT_EQ(document.find("emu7740a"), std::string::npos) << document;
    EXPECT_EQ(document.find("0e1e"), std::string::npos) << document;
    EXPECT_EQ(document.find("0e:1e"), std::string::npos) << document;
}

TEST(ToolsDocument, EnvelopeFollowsItsSchema) {
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    Record result;
    result.Add("name", "", Value::Text("bad \xff byte"));
    result.Add("tool", "", Value::Text("1"));
    result.Add("library", "", Value());
    Envelope envelope;
    envelope.schema = "vxmgr.version";
    envelope.tool = "1.0.0";
    envelope.argv = {"version", "\"quoted\\"};
    envelope.result = &result;
    envelope.messages = {{Severity::Warning, "text", "", "", std::nullopt},
                         {Severity::Error, "text", "hint", "index:1", HXMGT_DEVICE_BUSY}};
    envelope.changed = true;
    envelope.pending = {{"driver:x", "driver_restart", "later"}};
    envelope.exit = ExitCode::Partial;
    Redactor open(false);

    const auto json = Document::Parse(EnvelopeDocument(envelope, open));
    EXPECT_EQ(Lines(schemas.CheckEnvelope(json)), "");
    EXPECT_EQ(json["messages"][1]["status"], "0x20000067");
    EXPECT_EQ(json["messages"][1]["name"], "DEVICE_BUSY");
    EXPECT_TRUE(json["messages"][0]["status"].is_null());
    EXPECT_TRUE(json["library"].is_null());
    EXPECT_EQ(json["exit"], 11);

    envelope.result = nullptr;
    const std::string line = EnvelopeLine(envelope, 7, open);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    const auto last = Document::Parse(line);
    EXPECT_EQ(Lines(schemas.CheckEnvelope(last)), "");
    EXPECT_EQ(last["rows"], 7);
}

TEST(ToolsDocument, NumbersThatDoublesLoseComeAsTextToo) {
    Record result;
    result.Add("exact", "", Value::Number(uint64_t{1} << 53));
    result.Add("frames", "", Value::Number(UINT64_MAX));
    Envelope envelope;
    envelope.result = &result;
    Redactor open(false);
    const auto json = Document::Parse(EnvelopeDocument(envelope, open))["result"];
    EXPECT_FALSE(json.contains("exact_s"));
    EXPECT_EQ(json["frames"], UINT64_MAX);
    EXPECT_EQ(json["frames_s"], "18446744073709551615");
}

TEST(ToolsDocument, JsonLinesDoNotRepeatTheRows) {
    Record result = ListOf({Row("a", {})});
    Envelope envelope;
    envelope.result = &result;
    Redactor open(false);
    EXPECT_TRUE(Document::Parse(EnvelopeLine(envelope, 1, open))["result"].is_null());
    EXPECT_FALSE(Document::Parse(EnvelopeLine(envelope, 1, open)).contains("header"));
    EXPECT_EQ(RowLine("s", result.MainList()->records.front(), result, open),
              "{\"schema\":\"s\",\"row\":{\"name\":\"a\",\"secret\":\"S-1\","
              "\"link\":{\"speed\":null}}}\n");
    // A reader of one line has what stands beside the rows; of the last one, other lists too.
    result.Add("bank", "", Value::Text("first"));
    result.AddList("steps", "", ListLayout::Table, Row("", {}), "", {});
    EXPECT_EQ(Document::Parse(RowLine("s", result, result, open))["header"],
              Document::Parse(R"({"bank":"first"})"));
    EXPECT_EQ(Document::Parse(EnvelopeLine(envelope, 1, open))["header"],
              Document::Parse(R"({"bank":"first","steps":[]})"));
    Record plain;
    plain.Add("name", "", Value::Text("x"));
    envelope.result = &plain;
    EXPECT_EQ(Document::Parse(EnvelopeLine(envelope, 0, open))["result"]["name"], "x");
}

// The validator guards the other tests: what they lean on must be able to fail.
TEST(ToolsDocument, SchemaValidatorSeesFaults) {
    const struct {
        const char* schema;
        const char* good;
        const char* bad;
    } kRows[] = {
        {R"({"type":["integer","null"]})", "null", "1.5"},
        {R"({"enum":["a",null]})", "null", "\"b\""},
        {R"({"required":["a"]})", R"({"a":null})", "{}"},
        {R"({"additionalProperties":false,"properties":{"a":{}}})", R"({"a":1})", R"({"b":1})"},
        {R"({"items":{"type":"boolean"}})", "[true]", "[true,1]"},
    };
    support::JsonSchemas schemas(VXMGMT_SOURCE_FOLDER "/docs/schemas/");
    for (const auto& row : kRows) {
        const Document schema = Document::Parse(row.schema);
        EXPECT_EQ(Lines(schemas.CheckAgainst(Document::Parse(row.good), schema)), "") << row.schema;
        EXPECT_FALSE(schemas.CheckAgainst(Document::Parse(row.bad), schema).empty()) << row.schema;
    }
    EXPECT_FALSE(schemas.Check(Document::Parse("{}"), "vxemu.version.json").empty());
    EXPECT_FALSE(schemas.Check(Document::Parse("{}"), "none.json").empty());
    EXPECT_FALSE(
        schemas.CheckAgainst(Document(1), Document::Parse(R"({"$ref":"none.json"})")).empty());
    EXPECT_FALSE(
        schemas.CheckRow(Document::Parse(R"({"schema":"vxmgr.version","row":{}})")).empty());
}

}  // namespace
