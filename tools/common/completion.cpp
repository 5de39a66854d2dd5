#include "completion.h"

#include "text.h"

namespace tools {
namespace {

void AddOptionWords(std::span<const Argument> arguments, std::set<std::string>& words) {
    for (const Argument& argument : arguments) {
        if (argument.IsPositional()) {
            words.insert(argument.choices.begin(), argument.choices.end());
            continue;
        }
        for (const std::string& name : Split(argument.name, ',')) {
            words.insert(name);
        }
    }
}

std::string Joined(const std::set<std::string>& words, const char* quote) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty()     ? ""
                 : *quote == '\0' ? " "
                                  : ", ") +
                std::string(quote) + word + quote;
    }
    return text;
}

}  // namespace

std::map<std::string, std::set<std::string>> NextWords(const Tool& tool) {
    std::map<std::string, std::set<std::string>> next;
    for (const Command& command : tool.commands) {
        if (command.hidden) {
            continue;
        }
        std::string path;
        for (const std::string& word : Split(command.path, ' ')) {
            next[path].insert(word);
            path += (path.empty() ? "" : " ") + word;
        }
        AddOptionWords(command.arguments, next[path]);
    }
    for (auto& [path, words] : next) {
        AddOptionWords(CommonOptions(), words);
        AddOptionWords(tool.options, words);
    }
    return next;
}

// Both scripts find the longest path among the words typed so far that are not options, and offer
// what may follow it.
std::string PowerShellCompletion(const Tool& tool) {
    std::string text = "Register-ArgumentCompleter -Native -CommandName '" +
                       std::string(tool.name) +
                       "' -ScriptBlock {\n"
                       "    param($wordToComplete, $commandAst, $cursorPosition)\n"
                       "    $next = @{\n";
    for (const auto& [path, words] : NextWords(tool)) {
        text += "        '" + path + "' = @(" + Joined(words, "'") + ")\n";
    }
    text +=
        "    }\n"
        "    $path = ''\n"
        "    foreach ($element in $commandAst.CommandElements | Select-Object -Skip 1) {\n"
        "        $word = $element.ToString()\n"
        "        if ($element.Extent.EndOffset -ge $cursorPosition) { break }\n"
        "        $longer = ($path + ' ' + $word).Trim()\n"
        "        if ($next.ContainsKey($longer)) { $path = $longer }\n"
        "    }\n"
        "    $next[$path] | Where-Object { $_ -like \"$wordToComplete*\" } | ForEach-Object {\n"
        "        [System.Management.Automation.CompletionResult]::new(\n"
        "            $_, $_, 'ParameterValue', $_)\n"
        "    }\n"
        "}\n";
    return text;
}

std::string BashCompletion(const Tool& tool) {
    const std::string function = "_" + std::string(tool.name);
    std::string text = function +
                       "() {\n"
                       "    local path='' longer words word i\n"
                       "    local -A next=(\n";
    // An empty key is no key in bash: paths are written behind a colon.
    for (const auto& [path, words] : NextWords(tool)) {
        text += "        [':" + path + "']='" + Joined(words, "") + "'\n";
    }
    text +=
        "    )\n"
        "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
        "        word=${COMP_WORDS[i]}\n"
        "        longer=${path:+$path }$word\n"
        "        [[ -n ${next[\":$longer\"]+set} ]] && path=$longer\n"
        "    done\n"
        "    words=${next[\":$path\"]}\n"
        "    COMPREPLY=($(compgen -W \"$words\" -- \"${COMP_WORDS[COMP_CWORD]}\"))\n"
        "}\n"
        "complete -F " +
        function + " " + tool.name + " " + tool.name + ".exe\n";
    return text;
}

}  // namespace tools
