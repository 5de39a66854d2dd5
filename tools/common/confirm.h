// The question before a change: what each risk demands, and how it is answered.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "command.h"
#include "invocation.h"

namespace tools {

// What the command line already answers.
struct Answers {
    bool yes = false;         // --yes
    bool hasConfirm = false;  // --confirm
    std::string confirm;
    bool canAsk = false;  // somebody sits at the console, and the output mode allows a question
};

// Prints the prompt and reads a line; false at end of input.
using Ask = std::function<bool(const std::string& prompt, std::string* answer)>;

// Refuses, whatever the risk, when there is a --confirm and one of these adapters is another.
void RequireConfirmed(const Answers& given, const std::vector<std::string>& serials);

// Returns when the answer is yes, else throws CommandError: Cancelled for no, Usage when nobody can
// be asked, Refused when --confirm names another adapter.
void RequireConsent(Risk risk, const Question& question, const Answers& given, const Ask& ask);

}  // namespace tools
