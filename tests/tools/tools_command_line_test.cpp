// The tools' frame: what command lines mean, what is asked before a change, how commands end.
#include <gtest/gtest.h>

#include <mutex>
#include <optional>
#include <thread>

#include "support/has.h"
#include "tools/common/command_line.h"
#include "tools/common/completion.h"
#include "tools/common/confirm.h"
#include "tools/common/help.h"
#include "tools/common/stop.h"
#include "tools/records/text.h"

namespace {

using namespace tools;
using std::chrono::milliseconds;

constexpr const char* kShells[] = {"one", "two"};
constexpr Argument kWatchArguments[] = {
    {.name = "--kind", .valueName = "K", .repeated = true, .choices = kShells},
    {.name = "--count", .kind = ArgumentKind::Number, .valueName = "N", .least = 1, .most = 10},
};
constexpr Argument kGetArguments[] = {{.name = "NAME", .required = true}};
constexpr Argument kExplainArguments[] = {{.name = "CODE", .required = true, .repeated = true}};
constexpr Argument kExtraOptions[] = {{.name = "-p,--port",
                                       .valueName = "SEL",
                                       .naming = Naming::Selection,
                                       .source = {"port list", "scsi_port", "scsi:"}}};

const Command kCommands[] = {
    {"event watch", Risk::Reads, "print events", "event.watch", kWatchArguments, nullptr,
     "event watch --count 3"},
    {"event watch stop", Risk::InterruptsIo, "", "event.stop", {}, nullptr, "event watch stop"},
    {"param get", Risk::Reads, "", "param.get", kGetArguments, nullptr, "param get x", nullptr,
     [] { return std::string("Names: a, b."); }},
    {"explain", Risk::Reads, "", "explain", kExplainArguments, nullptr, "explain exit 5"},
    {"version", Risk::Reads, "", "version", {}, nullptr, "version"},
    {.path = "inner", .risk = Risk::Reads, .help = "", .schema = "inner", .hidden = true},
};
constexpr HelpTopic kTopics[] = {{"own", "", [] { return std::string("own text"); }}};
const Tool kTool{.name = "t",
                 .version = "1.0.0",
                 .summary = "",
                 .commands = kCommands,
                 .groups = {},
                 .options = kExtraOptions,
                 .topics = kTopics};

CommandLine Parse(const std::string& words) {
    return ParseCommandLine(kTool, words.empty() ? std::vector<std::string>() : Split(words, ' '));
}

TEST(ToolsCommandLine, GlobalOptionsStandAnywhere) {
    for (const char* words : {"-p 3 --json event watch --count 0xA --kind one --kind two",
                              "event -p 3 watch --kind one --json --count=10 --kind=two",
                              "event watch --count 10 --kind one --kind two -p 3 -o json"}) {
        const CommandLine line = Parse(words);
        ASSERT_EQ(line.error, "") << words;
        ASSERT_NE(line.command, nullptr) << words;
        EXPECT_STREQ(line.command->path, "event watch");
        EXPECT_EQ(line.mode, OutputMode::Json) << words;
        EXPECT_EQ(line.options.Text("port"), "3");
        EXPECT_EQ(line.options.Number("count"), 10u);
        EXPECT_EQ(line.options.All("kind"), (std::vector<std::string>{"one", "two"}));
        EXPECT_FALSE(line.options.Has("yes"));
    }
    const CommandLine spread = Parse("explain exit 5 -q");
    EXPECT_EQ(spread.options.All("CODE"), (std::vector<std::string>{"exit", "5"}));
    EXPECT_TRUE(spread.options.Has("quiet"));
}

TEST(ToolsCommandLine, ACommandMayHaveOthersBelowIt) {
    const CommandLine above = Parse("event watch --count 3");
    EXPECT_EQ(above.error, "");
    EXPECT_STREQ(above.command->path, "event watch");
    const CommandLine below = Parse("event watch -p 3 stop --json");
    EXPECT_EQ(below.error, "");
    EXPECT_STREQ(below.command->path, "event watch stop");
    EXPECT_EQ(below.options.Text("port"), "3");
    EXPECT_TRUE(support::Has(Parse("event watch --help").help, "stop"));
    EXPECT_TRUE(NextWords(kTool).at("event watch").contains("stop"));
}

TEST(ToolsCommandLine, ValuesAreTakenAsTheyAre) {
    // Names of commands, leading slashes and brackets are values like any other.
    for (const char* value : {"version", "event", "/x", "[a,b]", "a=b", "%PATH%"}) {
        const CommandLine line = Parse(std::string("param get ") + value);
        EXPECT_EQ(line.error, "") << value;
        EXPECT_EQ(line.options.Text("NAME"), value);
    }
}

TEST(ToolsCommandLine, MistakesAreErrorsOfTheirCommand) {
    const struct {
        const char* words;
        const char* path;  // null: no command was named
    } kRows[] = {
        {"", nullptr},
        {"event", nullptr},
        {"evnt watch", nullptr},
        {"event wtch", nullptr},
        {"event watch --count 0", "event watch"},
        {"event watch --count 11", "event watch"},
        {"event watch --count", "event watch"},
        {"event watch --count 1 --count 2", "event watch"},
        {"event watch --kind three", "event watch"},
        {"event watch extra", "event watch"},
        {"event watch stop extra", "event watch stop"},
        {"event watch stop --count 1", "event watch stop"},
        {"event watch --count 1 stop", "event watch stop"},
        {"event watch --bogus", "event watch"},
        {"param get", "param get"},
        {"param get a b", "param get"},
        {"version --timeout 0", "version"},
        {"version -o yaml", "version"},
        {"version --json -o csv", "version"},
    };
    for (const auto& row : kRows) {
        const CommandLine line = Parse(row.words);
        EXPECT_NE(line.error, "") << row.words;
        EXPECT_NE(line.hint, "") << row.words;
        EXPECT_STREQ(line.command == nullptr ? nullptr : line.command->path, row.path) << row.words;
    }
}

TEST(ToolsCommandLine, MistypedWordsTellWhatWasMeant) {
    const struct {
        const char* words;
        const char* named;
        const char* meant;  // null: nothing is near
    } kRows[] = {
        {"evnt watch", "\"evnt\"", "`event`"},
        {"vesrion", "\"vesrion\"", "`version`"},
        {"ver", "\"ver\"", "`version`"},
        {"event wtch", "\"event wtch\"", "`event watch`"},
        {"get x", "\"get\"", "`param get`"},
        {"zzz", "\"zzz\"", nullptr},
        {"inne", "\"inne\"", nullptr},  // hidden
        {"version --jsn", "--jsn", "`--json`"},
        {"event watch --cuont=3", "--cuont=3", "`--count`"},
        {"version --cuont=3", "--cuont=3", nullptr},
    };
    for (const auto& row : kRows) {
        const CommandLine line = Parse(row.words);
        EXPECT_NE(line.error.find(row.named), std::string::npos) << line.error;
        EXPECT_EQ(line.hint.find("did you mean") == 0, row.meant != nullptr) << line.hint;
        EXPECT_NE(line.hint.find(row.meant == nullptr ? "help" : row.meant), std::string::npos)
            << line.hint;
    }
}

TEST(ToolsCommandLine, SecretsAreFoundInWhateverStands) {
    for (const char* words : {"version -p ABC", "version --port=ABC", "version -pABC", "zzz -p ABC",
                              "zzz --bogus -pABC", "event watch --count x --confirm ABC",
                              "event watch -p ABC --count"}) {
        EXPECT_EQ(Parse(words).secrets, std::vector<std::string>{"ABC"}) << words;
    }
    EXPECT_TRUE(Parse("version -p 3").secrets.empty());
    EXPECT_TRUE(Parse("version -p serial:X").secrets.empty());
    EXPECT_EQ(Parse("version --confirm 3").secrets.size(), 1u);
    EXPECT_TRUE(Parse("zzz --redact --bogus").options.Has("redact"));
}

TEST(ToolsHelp, TellsOfEveryCommandAndTopic) {
    const std::string watch = HelpText(kTool, "event watch").value();
    for (const char* part : {"t event watch [--kind K]... [--count N]", "print events", "one, two",
                             "1 to 10", "Risk 0", "t event watch --count 3", "event watch stop",
                             "-p, --port SEL", "--timeout S"}) {
        EXPECT_NE(watch.find(part), std::string::npos) << part << "\n" << watch;
    }
    EXPECT_NE(HelpText(kTool, "event watch stop").value().find("y/N"), std::string::npos);
    EXPECT_NE(HelpText(kTool, "param get").value().find("Names: a, b."), std::string::npos);
    EXPECT_EQ(HelpText(kTool, "own"), "own text");
    for (const char* topic : {"", "event", "exit", "output", "risk"}) {
        EXPECT_TRUE(HelpText(kTool, topic).has_value()) << topic;
    }
    for (const char* none : {"zzz", "event zzz", "even", "event watch zzz"}) {
        EXPECT_FALSE(HelpText(kTool, none).has_value()) << none;
    }
    EXPECT_EQ(HelpText(kTool, "").value().find("inner"), std::string::npos);
    EXPECT_NE(MarkdownReference(kTool).find("#### `event watch stop`"), std::string::npos);
    EXPECT_EQ(MarkdownReference(kTool).find("inner"), std::string::npos);
}

TEST(ToolsHelp, ExamplesHaveToParse) {
    EXPECT_EQ(WrongExamples(kTool), std::vector<std::string>());
    for (const char* example : {"", "event watch", "version --bogus", "version -o yaml"}) {
        Command wrong = kCommands[4];
        wrong.example = example;
        Tool tool = kTool;
        const Command commands[] = {kCommands[0], wrong};
        tool.commands = commands;
        EXPECT_EQ(WrongExamples(tool).size(), 1u) << example;
    }
}

TEST(ToolsCommandLine, ErrorsGoWhereTheResultWouldHaveGone) {
    EXPECT_EQ(Parse("nonsense --json").mode, OutputMode::Json);
    EXPECT_EQ(Parse("-o jsonl nonsense").mode, OutputMode::JsonLines);
    EXPECT_EQ(Parse("-ojson nonsense").mode, OutputMode::Json);
    EXPECT_EQ(Parse("nonsense --output=csv --out f.txt").out, "f.txt");
    EXPECT_EQ(Parse("nonsense -o").mode, OutputMode::Text);
    EXPECT_EQ(Parse("nonsense -o json --out f.txt --count").out, "f.txt");
    EXPECT_EQ(Parse("event watch --json --count").mode, OutputMode::Json);
    EXPECT_NE(Parse("event watch --help --json").help, "");
    EXPECT_EQ(Parse("event watch --help --json").error, "");
}

TEST(ToolsCompletion, OffersEveryCommandAndOption) {
    const auto next = NextWords(kTool);
    EXPECT_TRUE(next.at("").contains("event"));
    EXPECT_FALSE(next.at("").contains("inner"));
    EXPECT_TRUE(next.at("event").contains("watch"));
    for (const char* word : {"--kind", "--count", "--port", "-p", "--json", "-o", "--output"}) {
        EXPECT_TRUE(next.at("event watch").contains(word)) << word;
    }
    const auto values = ValuesOf(kTool).rows;
    EXPECT_TRUE(values.at("-o").choices.contains("jsonl"));
    EXPECT_TRUE(values.at("event watch --kind").choices.contains("two"));
    EXPECT_STREQ(values.at("-p").source.column, "scsi_port");
    EXPECT_FALSE(values.contains("--json"));
    EXPECT_NE(BashCompletion(kTool).find("[':event']='"), std::string::npos);
    EXPECT_NE(PowerShellCompletion(kTool).find("'event watch' = @("), std::string::npos);
}

TEST(ToolsConfirm, EachRiskAsksItsQuestion) {
    constexpr ExitCode kYes = ExitCode::Done;
    const struct {
        Risk risk;
        Answers given;
        const char* typed;  // null: end of input
        ExitCode outcome;
        bool asks;
    } kRows[] = {
        {Risk::Reads, {}, "", kYes, false},
        {Risk::Reversible, {}, "", kYes, false},
        {Risk::Reads, {false, true, "OTHER", false}, "", ExitCode::Refused, false},
        {Risk::Reversible, {true, true, "OTHER", true}, "", ExitCode::Refused, false},
        {Risk::Reversible, {false, true, "EMU7740A0001", false}, "", kYes, false},
        {Risk::InterruptsIo, {true, false, "", false}, "", kYes, false},
        {Risk::InterruptsIo, {false, false, "", true}, " Y ", kYes, true},
        {Risk::InterruptsIo, {false, false, "", true}, "", ExitCode::Cancelled, true},
        {Risk::InterruptsIo, {false, false, "", true}, nullptr, ExitCode::Cancelled, true},
        {Risk::InterruptsIo, {false, false, "", true}, "yes please", ExitCode::Cancelled, true},
        {Risk::InterruptsIo, {false, false, "", false}, "y", ExitCode::Usage, false},
        {Risk::InterruptsIo, {true, true, "OTHER", true}, "y", ExitCode::Refused, false},
        {Risk::Irrecoverable, {true, true, "emu7740a0001", false}, "", kYes, false},
        {Risk::Irrecoverable, {true, false, "", false}, "", ExitCode::Usage, false},
        {Risk::Irrecoverable, {true, true, "", true}, "0001", ExitCode::Refused, false},
        {Risk::Irrecoverable, {true, true, "0001", true}, "0001", ExitCode::Refused, false},
        {Risk::Irrecoverable, {false, false, "", true}, "0001", kYes, true},
        {Risk::Irrecoverable, {false, false, "", true}, "y", ExitCode::Cancelled, true},
        {Risk::Irrecoverable, {false, false, "", true}, "A0001", ExitCode::Cancelled, true},
    };
    for (size_t i = 0; i < std::size(kRows); ++i) {
        const auto& row = kRows[i];
        bool asked = false;
        bool lookedUp = false;  // what takes a while is found out for a question alone
        const auto more = [&] {
            lookedUp = true;
            return std::vector<std::string>{"and what is behind it"};
        };
        const Ask ask = [&](const std::string& prompt, std::string* answer) {
            asked = true;
            EXPECT_EQ(prompt.find("what stops\nand what is behind it\n"), 0u);
            *answer = row.typed == nullptr ? "" : row.typed;
            return row.typed != nullptr;
        };
        ExitCode outcome = kYes;
        try {
            RequireConsent(row.risk, {{"what stops"}, "EMU7740A0001", more}, row.given, ask);
        } catch (const CommandError& error) {
            outcome = error.exit;
        }
        EXPECT_EQ(outcome, row.outcome) << "row " << i;
        EXPECT_EQ(asked, row.asks) << "row " << i;
        EXPECT_EQ(lookedUp, row.asks) << "row " << i;
    }
    const Answers other{true, true, "EMU7740A0001", true};
    EXPECT_NO_THROW(RequireConfirmed(other, {}));
    EXPECT_NO_THROW(RequireConfirmed(other, {"EMU7740A0001", "emu7740a0001"}));
    EXPECT_THROW(RequireConfirmed(other, {"EMU7740A0001", "EMU7404A0002"}), CommandError);
    EXPECT_THROW(RequireConfirmed(other, {""}), CommandError);
}

TEST(ToolsConfirm, AnAdapterWithoutSerialCannotBeConfirmed) {
    const Ask enter = [](const std::string&, std::string*) { return true; };
    EXPECT_THROW(RequireConsent(Risk::Irrecoverable, {{}, ""}, {false, false, "", true}, enter),
                 CommandError);
}

TEST(ToolsStop, DeadlineStopsTheCommandAndGraceLetsItFinish) {
    StopControl stop;
    stop.SetLimit(milliseconds(20));
    auto pause = std::make_optional<LimitPause>(stop);
    std::thread worker([&] {
        EXPECT_FALSE(stop.WaitFor(milliseconds(60)));  // a wait of its own limit
        pause.reset();
        EXPECT_TRUE(stop.WaitFor(milliseconds(20000)));
        stop.Finish();
    });
    EXPECT_TRUE(stop.WaitForEnd(milliseconds(20000)));
    worker.join();
    EXPECT_EQ(stop.Reason(), StopReason::TimedOut);
    EXPECT_EQ(ExitCodeOf(stop.Reason()), ExitCode::TimedOut);
}

TEST(ToolsStop, WhatIsHeldIsFinishedFirst) {
    StopControl stop;
    auto hold = std::make_optional<StopHold>(stop, "the region");
    stop.Request(StopReason::Interrupted);
    std::thread worker([&] {
        EXPECT_TRUE(hold->IsStopping());
        std::this_thread::sleep_for(milliseconds(100));  // longer than the grace
        stop.Finish();  // without a grace nobody waits between the two
        hold.reset();
    });
    EXPECT_TRUE(stop.WaitForEnd(milliseconds(0)));
    worker.join();

    StopControl stuck;
    stuck.BeginHold("the region", milliseconds(20));
    stuck.Request(StopReason::TimedOut);
    EXPECT_FALSE(stuck.WaitForEnd(milliseconds(20000))) << "a hold that nobody renews";
    StopControl impatient;
    impatient.BeginHold("the region", milliseconds(20000));
    impatient.Request(StopReason::Interrupted);
    impatient.Request(StopReason::Interrupted);
    EXPECT_FALSE(impatient.WaitForEnd(milliseconds(20000)));
}

TEST(ToolsStop, StuckCommandIsGivenUp) {
    StopControl stop;
    stop.SetLimit(milliseconds(0));
    EXPECT_FALSE(stop.WaitForEnd(milliseconds(10)));

    // A second interrupt does not wait for the grace; the first reason stays.
    StopControl impatient;
    impatient.Request(StopReason::Interrupted);
    impatient.Request(StopReason::Interrupted);
    const auto before = StopControl::Clock::now();
    EXPECT_FALSE(impatient.WaitForEnd(milliseconds(20000)));
    EXPECT_LT(StopControl::Clock::now() - before, milliseconds(10000));
    impatient.Request(StopReason::TimedOut);
    EXPECT_EQ(impatient.Reason(), StopReason::Interrupted);

    StopControl done;
    done.Finish();
    EXPECT_TRUE(done.WaitForEnd(milliseconds(0)));
    EXPECT_EQ(done.Reason(), StopReason::None);
}

TEST(ToolsStop, HooksRunYoungestFirstAndMayHang) {
    AbandonHooks hooks;
    std::mutex lock;
    std::string order;
    const auto add = [&](char mark) {
        const std::lock_guard guard(lock);
        order += mark;
    };
    // Outlives the test: the hook that hangs runs on a thread of its own.
    static std::mutex hang;
    const std::lock_guard hanging(hang);
    const AbandonHooks::Registration last(hooks, [] { const std::lock_guard wait(hang); });
    const AbandonHooks::Registration second(hooks, [&] { add('2'); });
    {
        const AbandonHooks::Registration gone(hooks, [&] { add('x'); });
    }
    const AbandonHooks::Registration first(hooks, [&] { add('1'); });
    const auto before = StopControl::Clock::now();
    hooks.Run(milliseconds(300));
    EXPECT_LT(StopControl::Clock::now() - before, milliseconds(10000));
    const std::lock_guard guard(lock);
    EXPECT_EQ(order, "12");
}

}  // namespace
