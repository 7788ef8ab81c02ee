#include "tool/commands/Completion.h"

#include <algorithm>

namespace tovrtool {
namespace {

// What may follow a command: its subcommands, its options and the program's own.
std::string wordsAfter(const CommandPage& page, const CommandPage& program) {
  std::string words;
  const auto add = [&words](const std::vector<std::string>& more) {
    for (const std::string& word : more) words += (words.empty() ? "" : " ") + word;
  };
  add(page.subcommands);
  for (const OptionPage& option : page.options) add(option.names);
  if (page.name.empty()) return words;
  for (const OptionPage& option : program.options) {
    if (option.names.back() != "--help" && option.names.back() != "--version") add(option.names);
  }
  return words;
}

// A shell's single-quoted text.
std::string shellQuoted(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The words of the command so far, options left out, name a page; bash and zsh share the function that looks it up.
std::string lookupFunction(const std::vector<CommandPage>& pages) {
  std::string text = "_tovrdb_words() {\n  case \"$1\" in\n";
  for (const CommandPage& page : pages) {
    text += "    " + shellQuoted(page.name) + ") echo " + shellQuoted(wordsAfter(page, pages.front())) + " ;;\n";
  }
  return text + "  esac\n}\n";
}

}  // namespace

std::string bashCompletion(const std::vector<CommandPage>& pages) {
  return "# bash completion of tovrdb; made by \"tovrdb completion bash\"\n" + lookupFunction(pages) +
         R"sh(_tovrdb() {
  local current=${COMP_WORDS[COMP_CWORD]} command= word next
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    next="${command:+$command }$word"
    [ -n "$(_tovrdb_words "$next")" ] && command=$next
  done
  COMPREPLY=($(compgen -W "$(_tovrdb_words "$command")" -- "$current"))
}
complete -o default -F _tovrdb tovrdb
)sh";
}

std::string zshCompletion(const std::vector<CommandPage>& pages) {
  return "#compdef tovrdb\n# made by \"tovrdb completion zsh\"\n" + lookupFunction(pages) +
         R"sh(_tovrdb() {
  local command= word next
  for word in "${(@)words[2,CURRENT-1]}"; do
    next="${command:+$command }$word"
    [ -n "$(_tovrdb_words "$next")" ] && command=$next
  done
  compadd -- ${(s: :)"$(_tovrdb_words "$command")"}
  _files
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
    for (const OptionPage& option : page.options) {
      text += "complete -c tovrdb" + when;
      for (const std::string& name : option.names)
        text += name[1] == '-' ? " -l " + name.substr(2) : " -s " + name.substr(1);
      if (!option.value.empty()) text += " -r";
      text += " -d " + shellQuoted(firstLine(option.description)) + "\n";
    }
  }
  return text;
}

}  // namespace tovrtool
