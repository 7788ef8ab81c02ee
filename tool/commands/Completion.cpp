#include <algorithm>

#include "tool/commands/Documentation.h"

namespace tovrdb::tool {
namespace {

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
  return text;
}

// The words that may follow a command: subcommands, its options and the program's, and values of positionals.
std::string wordsAfter(const CommandPage& page, const CommandPage& program) {
  std::string words;
  const auto add = [&words](const std::vector<std::string>& more) {
    if (!more.empty()) words += (words.empty() ? "" : " ") + joined(more);
  };
  add(page.subcommands);
  for (const OptionPage& option : page.options) add(option.names);
  for (const OptionPage& positional : page.positionals) add(positional.choices);
  if (page.name.empty()) return words;
  for (const OptionPage& option : program.options) {
    if (option.names.back() != "--help" && option.names.back() != "--version") add(option.names);
  }
  return words;
}

// The text in single quotes, as shells read it.
std::string shellQuoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The cases of options that take a value: of a command, or of any command if the name is empty.
std::string valueCases(const std::string& command, const std::vector<OptionPage>& options) {
  std::string text;
  for (const OptionPage& option : options) {
    if (option.value.empty()) continue;
    std::string pattern;
    for (const std::string& name : option.names) {
      pattern +=
          (pattern.empty() ? "" : "|") + std::string(command.empty() ? "*" : "") + shellQuoted(command + " " + name);
    }
    text +=
        "    " + pattern + ") echo " + shellQuoted(option.choices.empty() ? "FILE" : joined(option.choices)) + " ;;\n";
  }
  return text;
}

// Lookup functions that bash and zsh share. The words of the command so far, without options, name a page; an option
// takes one of some words, or a file name if there are no words, or nothing if it is a flag.
std::string lookupFunctions(const std::vector<CommandPage>& pages) {
  std::string text = "_tovrdb_words() {\n  case \"$1\" in\n";
  for (const CommandPage& page : pages) {
    text += "    " + shellQuoted(page.name) + ") echo " + shellQuoted(wordsAfter(page, pages.front())) + " ;;\n";
  }
  text += "  esac\n}\n_tovrdb_values() {\n  case \"$1 $2\" in\n";
  for (const CommandPage& page : pages) {
    if (!page.name.empty()) text += valueCases(page.name, page.options);
  }
  return text + valueCases("", pages.front().options) + "  esac\n}\n";
}

}  // namespace

std::string bashCompletion(const std::vector<CommandPage>& pages) {
  return "# bash completion of tovrdb; made by \"tovrdb completion bash\"\n" + lookupFunctions(pages) +
         R"sh(_tovrdb() {
  local current=${COMP_WORDS[COMP_CWORD]} command= word next
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    next="${command:+$command }$word"
    [ -n "$(_tovrdb_words "$next")" ] && command=$next
  done
  local values=$(_tovrdb_values "$command" "${COMP_WORDS[COMP_CWORD-1]}")
  COMPREPLY=()
  [ "$values" = FILE ] || COMPREPLY=($(compgen -W "${values:-$(_tovrdb_words "$command")}" -- "$current"))
}
complete -o default -F _tovrdb tovrdb
)sh";
}

std::string zshCompletion(const std::vector<CommandPage>& pages) {
  return "#compdef tovrdb\n# made by \"tovrdb completion zsh\"\n" + lookupFunctions(pages) +
         R"sh(_tovrdb() {
  local command= word next values
  for word in "${(@)words[2,CURRENT-1]}"; do
    next="${command:+$command }$word"
    [ -n "$(_tovrdb_words "$next")" ] && command=$next
  done
  values=$(_tovrdb_values "$command" "${words[CURRENT-1]}")
  [ "$values" = FILE ] || compadd -- ${(s: :)"${values:-$(_tovrdb_words "$command")}"}
  case $values in FILE|'') _files ;; esac
}
_tovrdb "$@"
)sh";
}

std::string fishCompletion(const std::vector<CommandPage>& pages) {
  std::string text = "# fish completion of tovrdb; made by \"tovrdb completion fish\"\n";
  for (const CommandPage& page : pages) {
    std::string condition;
    for (std::size_t begin = 0, end = 0; begin < page.name.size(); begin = end + 1) {
      end = std::min(page.name.find(' ', begin), page.name.size());
      const std::string word = page.name.substr(begin, end - begin);
      condition += (condition.empty() ? "" : "; and ") + std::string("__fish_seen_subcommand_from ") + word;
    }
    const std::string when = condition.empty() ? "" : " -n " + shellQuoted(condition);
    for (const std::string& command : page.subcommands) {
      const std::string unseen = condition.empty() ? " -n __fish_use_subcommand" : when;
      text += "complete -c tovrdb" + unseen + " -a " + command + "\n";
    }
    for (const OptionPage& positional : page.positionals) {
      if (!positional.choices.empty()) {
        text += "complete -c tovrdb" + when + " -f -a " + shellQuoted(joined(positional.choices)) + "\n";
      }
    }
    for (const OptionPage& option : page.options) {
      text += "complete -c tovrdb" + when;
      for (const std::string& name : option.names)
        text += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
      if (!option.value.empty()) text += option.choices.empty() ? " -r -F" : " -x";
      if (!option.choices.empty()) text += " -a " + shellQuoted(joined(option.choices));
      text += " -d " + shellQuoted(firstLine(option.description)) + "\n";
    }
  }
  return text;
}

}  // namespace tovrdb::tool
