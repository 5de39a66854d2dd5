#include "confirm.h"

#include <algorithm>

#include "records/text.h"

namespace tools {
namespace {

constexpr size_t kTypedCharacters = 4;

[[noreturn]] void Refuse(ExitCode exit, const char* text, const char* hint) {
    throw CommandError{exit, {Severity::Error, text, hint, {}, {}}};
}

std::string Trimmed(const std::string& text) {
    const size_t start = text.find_first_not_of(" \t");
    const size_t end = text.find_last_not_of(" \t");
    return start == std::string::npos ? std::string() : text.substr(start, end - start + 1);
}

std::string LastCharacters(const std::string& serial) {
    return serial.size() <= kTypedCharacters ? serial
                                             : serial.substr(serial.size() - kTypedCharacters);
}

}  // namespace

void RequireConfirmed(const Answers& given, const std::vector<std::string>& serials) {
    // Several adapters are named one behind the other, with commas.
    const auto isConfirmed = [&](const std::string& serial) {
        return ("," + Lowercase(given.confirm) + ",").find("," + Lowercase(serial) + ",") !=
               std::string::npos;
    };
    if (given.hasConfirm && !std::all_of(serials.begin(), serials.end(), isConfirmed)) {
        Refuse(ExitCode::Refused, "--confirm names another adapter than the one selected",
               "check the selection and the serial number; nothing was done");
    }
}

void RequireConsent(Risk risk, const Question& question, const Answers& given, const Ask& ask) {
    RequireConfirmed(given, {question.serial});
    if (risk < Risk::InterruptsIo) {
        return;
    }
    const bool severe = risk == Risk::Irrecoverable;
    if (given.yes && (!severe || given.hasConfirm)) {
        return;
    }
    if (!given.canAsk) {
        Refuse(ExitCode::Usage, "the command asks before it goes on, and nobody can be asked",
               severe ? "give --yes --confirm SERIAL" : "give --yes");
    }
    std::string prompt;
    for (const std::string& line : question.lines) {
        prompt += line + "\n";
    }
    if (question.whenAsked) {
        for (const std::string& line : question.whenAsked()) {
            prompt += line + "\n";
        }
    }
    const std::string expected = LastCharacters(question.serial);
    prompt += severe ? "Type the last " + std::to_string(expected.size()) +
                           " characters of the serial number to go on: "
                     : std::string("Go on? [y/N] ");
    std::string answer;
    const bool answered = ask(prompt, &answer);
    const std::string word = Lowercase(Trimmed(answer));
    const bool agreed =
        severe ? !expected.empty() && word == Lowercase(expected) : word == "y" || word == "yes";
    if (!answered || !agreed) {
        Refuse(ExitCode::Cancelled, "cancelled, nothing was changed", "");
    }
}

}  // namespace tools
