#include "completion.h"

#include "records/text.h"

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

void AddValues(const std::string& path, std::span<const Argument> arguments, OptionValues& values) {
    for (const Argument& argument : arguments) {
        if (argument.IsPositional() || argument.kind == ArgumentKind::Flag) {
            continue;
        }
        for (const std::string& name : Split(argument.name, ',')) {
            OptionValues::Row& row = values.rows[path.empty() ? name : path + " " + name];
            row.choices.insert(argument.choices.begin(), argument.choices.end());
            row.source = argument.source;
        }
    }
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

OptionValues ValuesOf(const Tool& tool) {
    OptionValues values;
    AddValues("", CommonOptions(), values);
    AddValues("", tool.options, values);
    for (const Command& command : tool.commands) {
        if (!command.hidden) {
            AddValues(command.path, command.arguments, values);
        }
    }
    return values;
}

// Both scripts find the longest path among the words typed so far that are not options, and offer
// what may follow it, or the values of the option before. Where adapters and ports are wanted they
// ask the tool itself, for two seconds at most, and offer nothing when that fails.
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
        "    $values = @{\n";
    std::string sources;
    for (const auto& [option, row] : ValuesOf(tool).rows) {
        if (row.source.command != nullptr) {
            sources += "        '" + option + "' = @('" + row.source.command + "', '" +
                       row.source.column + "', '" + row.source.prefix + "')\n";
        } else {
            text += "        '" + option + "' = @(" + Joined(row.choices, "'") + ")\n";
        }
    }
    text +=
        "    }\n"
        "    $sources = @{\n" +
        sources +
        "    }\n"
        "    $path = ''\n"
        "    $previous = ''\n"
        "    foreach ($element in $commandAst.CommandElements | Select-Object -Skip 1) {\n"
        "        $word = $element.ToString()\n"
        "        if ($element.Extent.EndOffset -ge $cursorPosition) { break }\n"
        "        $longer = ($path + ' ' + $word).Trim()\n"
        "        if ($next.ContainsKey($longer)) { $path = $longer }\n"
        "        $previous = $word\n"
        "    }\n"
        "    $offer = $next[$path]\n"
        "    foreach ($key in @(\"$path $previous\", $previous)) {\n"
        "        if ($values.ContainsKey($key)) { $offer = $values[$key]; break }\n"
        "        if (-not $sources.ContainsKey($key)) { continue }\n"
        "        $command, $column, $prefix = $sources[$key]\n"
        "        $offer = try {\n"
        "            & $commandAst.CommandElements[0].Value @($command.Split(' ')) -o csv -q "
        "--timeout 2 2>$null |\n"
        "                ConvertFrom-Csv | ForEach-Object { $prefix + $_.$column }\n"
        "        } catch { @() }\n"
        "        break\n"
        "    }\n"
        "    $offer | Where-Object { $_ -like \"$wordToComplete*\" } | ForEach-Object {\n"
        "        [System.Management.Automation.CompletionResult]::new(\n"
        "            $_, $_, 'ParameterValue', $_)\n"
        "    }\n"
        "}\n";
    return text;
}

std::string BashCompletion(const Tool& tool) {
    const std::string function = "_" + std::string(tool.name);
    std::string text = function +
                       "_from() {\n"
                       "    local IFS=, line fields i column=-1\n"
                       "    while read -r line; do\n"
                       "        read -r -a fields <<<\"${line%$'\\r'}\"\n"
                       "        if ((column >= 0)); then\n"
                       "            [[ -n ${fields[column]} ]] && echo \"$3${fields[column]}\"\n"
                       "            continue\n"
                       "        fi\n"
                       "        for i in \"${!fields[@]}\"; do\n"
                       "            [[ ${fields[i]} == \"$2\" ]] && column=$i\n"
                       "        done\n"
                       "        ((column >= 0)) || return\n"
                       "    done < <(IFS=' '; \"${COMP_WORDS[0]}\" $1 -o csv -q --timeout 2 "
                       "2>/dev/null)\n"
                       "}\n" +
                       function +
                       "() {\n"
                       "    local line=${COMP_LINE:0:COMP_POINT}\n"
                       "    local current=${line##*[[:space:]]} path='' previous='' offer longer "
                       "word words key\n"
                       "    local -A next=(\n";
    // An empty key is no key in bash: paths are written behind a colon.
    for (const auto& [path, words] : NextWords(tool)) {
        text += "        [':" + path + "']='" + Joined(words, "") + "'\n";
    }
    text +=
        "    )\n"
        "    local -A values=(\n";
    std::string sources;
    for (const auto& [option, row] : ValuesOf(tool).rows) {
        if (row.source.command != nullptr) {
            sources += "        [':" + option + "']=\"'" + row.source.command + "' '" +
                       row.source.column + "' '" + row.source.prefix + "'\"\n";
        } else {
            text += "        [':" + option + "']='" + Joined(row.choices, "") + "'\n";
        }
    }
    text +=
        "    )\n"
        "    local -A sources=(\n" +
        sources +
        "    )\n"
        "    read -r -a words <<<\"${line%\"$current\"}\"\n"
        "    for word in \"${words[@]:1}\"; do\n"
        "        longer=${path:+$path }$word\n"
        "        [[ -n ${next[\":$longer\"]+set} ]] && path=$longer\n"
        "        previous=$word\n"
        "    done\n"
        "    if [[ $current == --*=* ]]; then\n"
        "        previous=${current%%=*}\n"
        "        current=${current#*=}\n"
        "    fi\n"
        "    offer=${next[\":$path\"]}\n"
        "    for key in \":$path $previous\" \":$previous\"; do\n"
        "        if [[ -n ${values[$key]+set} ]]; then\n"
        "            offer=${values[$key]}\n"
        "            break\n"
        "        elif [[ -n ${sources[$key]+set} ]]; then\n"
        "            offer=$(eval \"" +
        function +
        "_from ${sources[$key]}\")\n"
        "            break\n"
        "        fi\n"
        "    done\n"
        "    COMPREPLY=($(compgen -W \"$offer\" -- \"$current\"))\n"
        // The shell takes what stands before a colon for a word of its own.
        "    if [[ $COMP_WORDBREAKS == *:* ]]; then\n"
        "        COMPREPLY=(\"${COMPREPLY[@]#\"${current%\"${current##*:}\"}\"}\")\n"
        "    fi\n"
        "}\n"
        "complete -o default -F " +
        function + " " + tool.name + " " + tool.name + ".exe\n";
    return text;
}

}  // namespace tools
