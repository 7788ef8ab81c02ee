#include "tool/InspectCommand.h"

#include "tool/Session.h"
#include "tool/TextTable.h"

namespace tovrtool {
namespace {

// "cpp.DBManager" is kept under "DBManager", as the library itself asks for it.
std::string objectName(const std::string& className) { return className.substr(className.find('.') + 1); }

void inspect(Context& context) {
  const auto host = loadPlugin(context);
  host->manager();  // creates the other two services
  const tovr::PluginInfo& info = host->info();
  std::string text = std::string("name         ") + info.name + "\nversion      " + info.version + "\napi version  " +
                     info.apiVersion + "\ndescription  " + info.desc + "\n\n";
  std::vector<std::vector<std::string>> rows;
  for (tovr::ClassInfo* const* entry = info.classes; *entry != nullptr; ++entry) {
    const std::string name = (*entry)->name;
    const bool created = host->findObject(objectName(name).c_str()) != nullptr;
    rows.push_back(
        {name, objectName(name), created ? "yes" : "no", host->handler(objectName(name)) != nullptr ? "yes" : "no"});
  }
  context.output.print(text + textTable({{"class"}, {"object"}, {"created"}, {"message handler"}}, rows));
}

}  // namespace

void addInspectCommand(CLI::App& app, Command& chosen) {
  CLI::App* command = app.add_subcommand("inspect", "What the plug-in says about itself; needs no database");
  command->callback([&chosen] { chosen = {"inspect", inspect}; });
}

}  // namespace tovrtool
