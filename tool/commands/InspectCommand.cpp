#include "tool/commands/InspectCommand.h"

#include <memory>

#include "tool/database/Session.h"
#include "tool/forms/JsonText.h"
#include "tool/forms/TextTable.h"

namespace tovrtool {
namespace {

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
  std::vector<std::vector<std::string>> rows;
  for (const ClassFacts& entry : facts) {
    rows.push_back({entry.name, entry.object, yesOrNo(entry.created), yesOrNo(entry.handlesMessages)});
  }
  return std::string("name         ") + info.name + "\nversion      " + info.version + "\napi version  " +
         info.apiVersion + "\ndescription  " + info.desc + "\n\n" +
         textTable({{"class"}, {"object"}, {"created"}, {"message handler"}}, rows);
}

std::string asJson(const tovr::PluginInfo& info, const std::vector<ClassFacts>& facts) {
  Json list = Json::array();
  for (const ClassFacts& entry : facts) {
    list.push_back({{"class", entry.name},
                    {"object", entry.object},
                    {"created", entry.created},
                    {"messageHandler", entry.handlesMessages}});
  }
  return jsonText({{"name", info.name},
                   {"version", info.version},
                   {"apiVersion", info.apiVersion},
                   {"description", info.desc},
                   {"classes", list}});
}

void inspect(Context& context, bool json) {
  const auto host = loadPlugin(context);
  const auto facts = classes(*host);
  context.output.print(json ? asJson(host->info(), facts) : asText(host->info(), facts));
}

}  // namespace

void addInspectCommand(CLI::App& app, Command& chosen) {
  auto json = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand("inspect", "What the plug-in says about itself; needs no database");
  command->add_flag("--json", *json, "Print it as JSON");
  command->callback([&chosen, json] { chosen = {"inspect", [json](Context& context) { inspect(context, *json); }}; });
}

}  // namespace tovrtool
