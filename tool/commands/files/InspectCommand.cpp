#include <fmt/core.h>

#include "client/base/Json.h"
#include "client/session/Session.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct Options {
  bool json = false;
};

// "cpp.DBManager" is kept under "DBManager", as the library itself asks for it.
std::string objectName(const std::string& className) { return className.substr(className.find('.') + 1); }

struct ClassFacts {
  std::string name;
  std::string object;
  bool created = false;
  bool handlesMessages = false;
};

std::vector<ClassFacts> classes(tovrhost::PluginHost& host) {
  host.manager();  // creates the other two services
  std::vector<ClassFacts> facts;
  for (tovr::ClassInfo* const* entry = host.info().classes; *entry != nullptr; ++entry) {
    const std::string name = (*entry)->name;
    const std::string object = objectName(name);
    facts.push_back({name, object, host.findObject(object.c_str()) != nullptr, host.handler(object) != nullptr});
  }
  return facts;
}

std::string asText(const tovr::PluginInfo& info, const std::vector<ClassFacts>& facts) {
  const auto yesOrNo = [](bool value) { return value ? "yes" : "no"; };
  TextRows rows;
  for (const ClassFacts& entry : facts) {
    rows.push_back({entry.name, entry.object, yesOrNo(entry.created), yesOrNo(entry.handlesMessages)});
  }
  return fmt::format("name         {}\nversion      {}\napi version  {}\ndescription  {}\n\n{}", info.name,
                     info.version, info.apiVersion, info.desc,
                     textTable({{"class"}, {"object"}, {"created"}, {"message handler"}}, rows));
}

std::string asJson(const tovr::PluginInfo& info, const std::vector<ClassFacts>& facts) {
  Json list = Json::array();
  for (const ClassFacts& entry : facts) {
    list.push_back({{"class", entry.name},
                    {"object", entry.object},
                    {"created", entry.created},
                    {"message_handler", entry.handlesMessages}});
  }
  return jsonText({{"name", info.name},
                   {"version", info.version},
                   {"api_version", info.apiVersion},
                   {"description", info.desc},
                   {"classes", list}});
}

void inspect(Context& context, const Options& options) {
  const auto host = loadPlugin(context.options.access.plugin);
  const auto facts = classes(*host);
  context.output.print(options.json ? asJson(host->info(), facts) : asText(host->info(), facts));
}

}  // namespace

void addInspectCommand(CommandGroup& program) {
  const auto [command, options] =
      program.add("inspect", "What the plug-in says about itself; needs no database", inspect);
  command.add_flag("--json", options.json, "Print it as JSON");
}

}  // namespace tovrdb::tool
