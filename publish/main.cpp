// The command line of kestrane-publish.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <functional>
#include <iostream>
#include <map>
#include <memory>

#include "base/text.h"
#include "platform/console.h"
#include "publish/commands.h"
#include "publish/option_errors.h"
#include "publish/report.h"
#include "publish/serve.h"
#include "publish/source.h"

namespace {

using publish::Failed;

constexpr const char* ScriptHelp = "The update script: a file or a URL";
constexpr const char* KeyHelp =
    "Key that installations name: its 64 digits, or its file, public or private";
constexpr const char* SigningKeyHelp = "Private key to sign the script with; twice for two of them";
constexpr const char* JsonHelp = "Tell it as JSON";

/// What a command does once its options are read; its exit status.
using Execution = std::function<int()>;

Execution DefineCheck(CLI::App& command) {
  auto options = std::make_shared<publish::CheckOptions>();
  command.add_option("SCRIPT", options->script, ScriptHelp)->required();
  command.add_option("--newest", options->newest, "Newest release of the application");
  command.add_option("--updater", options->updater,
                     "File of the updater that the header offers, if it is not beside the script");
  command.add_option("--key", options->key, KeyHelp);
  command.add_flag("--probe", options->probe,
                   "Ask the server for every file; with digests, compare what it sends with them");
  command.add_flag("--json", options->asJson, JsonHelp);
  command.footer(
      "Exit status: 0 nothing to tell, 1 warnings, 2 errors.\n\n"
      "Examples:\n"
      "  kestrane-publish check site/update.txt --newest 3.2.0\n"
      "  kestrane-publish check https://updates.example/ledger/update.txt --json");
  return [options] { return publish::RunCheck(*options); };
}

Execution DefineSimulate(CLI::App& command) {
  auto options = std::make_shared<publish::SimulateOptions>();
  command.add_option("SCRIPT", options->script, ScriptHelp)->required();
  auto* which = command.add_option_group("which", "For which installations");
  which->add_option("--installed", options->installed, "Installed versions");
  which->add_flag("--matrix", options->all, "Every version that the script tells apart");
  which->require_option(1);
  command.add_option("--key", options->key, KeyHelp);
  auto* const probe = command.add_flag(
      "--probe", options->probe, "Ask the server for every file, with two HEAD requests each");
  command
      .add_option("--site", options->site,
                  "Upload folder, with whose files the sizes on the server are compared")
      ->needs(probe);
  command.add_flag("--summary", options->inShort,
                   "For each installation the final screen, and what goes wrong");
  command.add_flag("--json", options->asJson, JsonHelp);
  command.footer(
      "Nothing is downloaded or carried out. Exit status: 0, or 2 where an update fails.\n\n"
      "Examples:\n"
      "  kestrane-publish simulate site/update.txt --installed 2.7.1 3.1.0\n"
      "  kestrane-publish simulate https://updates.example/ledger/update.txt --matrix --probe");
  return [options] { return publish::RunSimulate(*options); };
}

Execution DefineServe(CLI::App& command) {
  auto options = std::make_shared<publish::ServeOptions>();
  command.add_option("SITE", options->site, "Upload folder")->required();
  command.add_option("--url", options->url, "Where it will be found, if its script does not tell");
  command.add_option("--port", options->port, "Port on this machine")
      ->check(CLI::Range(1, INT16_MAX))
      ->capture_default_str();
  command.footer(
      "Nobody outside of this machine is served. The script is served with URLs that lead here.");
  return [options] { return publish::RunServe(*options); };
}

/// Paths and texts as they are given, in UTF-8.
struct MakeArguments {
  publish::Order order;
  std::string oldFolder;
  std::string newFolder;
  std::string site = "site";
  std::vector<std::string> updater;
  std::vector<std::string> keys;
  bool asJson = false;
};

/// A text that goes into the script.
std::string TextOf(const std::string& utf8) {
  const auto text = modFunciones::FromUtf8(utf8);
  if (!text) throw CLI::ValidationError(utf8, "has characters that Windows-1252 lacks");
  return *text;
}

int RunMake(MakeArguments arguments) {
  auto& order = arguments.order;
  order.oldFolder = publish::PathOf(arguments.oldFolder);
  order.newFolder = publish::PathOf(arguments.newFolder);
  order.site = publish::PathOf(arguments.site);
  order.name = TextOf(order.name);
  if (arguments.updater.size() == 2) {
    order.updaterUrl = arguments.updater[0];
    order.updaterVersion = arguments.updater[1];
  }
  publish::Wishes& wishes = order.wishes;
  for (auto* texts : {&wishes.backups, &wishes.kept, &wishes.components, &wishes.programs,
                      &wishes.firstLines, &wishes.lastLines, &order.excluded}) {
    for (auto& text : *texts) text = TextOf(text);
  }
  for (auto* names : {&wishes.backups, &wishes.kept, &wishes.components}) {
    for (auto& name : *names) std::replace(name.begin(), name.end(), '/', '\\');
  }
  return publish::RunMake(order, arguments.asJson, arguments.keys);
}

/// An option that may be given several times, a value each.
void AddList(CLI::App& command, const char* name, std::vector<std::string>& values,
             const char* help) {
  command.add_option(name, values, help)->allow_extra_args(false)->group("Lists");
}

Execution DefineMake(CLI::App& command) {
  auto arguments = std::make_shared<MakeArguments>();
  auto& order = arguments->order;
  command.add_option("OLD", arguments->oldFolder, "Folder of the old version")->required();
  command.add_option("NEW", arguments->newFolder, "Folder of the new version")->required();
  command.add_option("--url", order.url, "Where the upload folder will be found")->required();
  command.add_option("--from", order.from, "Old version")->required();
  command.add_option("--to", order.to, "New version")->required();
  command.add_option("--site", arguments->site, "Upload folder; a script in it is continued")
      ->capture_default_str();
  command.add_option("--name", order.name, "Name of the application in the window");
  command
      .add_option("--updater", arguments->updater,
                  "URL and version of the newest updater; otherwise Kestrane.exe in NEW is it")
      ->expected(2)
      ->type_name("URL VERSION");
  AddList(command, "--backup", order.wishes.backups,
          "File that users may have edited: the old one is kept as .bak");
  AddList(command, "--keep", order.wishes.kept,
          "File that is the user's: installed where it is missing, never replaced or removed");
  AddList(command, "--exclude", order.excluded,
          "Pattern such as *.log or cache/*: these files are left out of both folders");
  AddList(command, "--kill", order.wishes.programs,
          "Program to end, beside those of OLD; by the end of its name");
  AddList(command, "--first", order.wishes.firstLines, "Line for the beginning of the block");
  AddList(command, "--register", order.wishes.components,
          "DLL or OCX that registers itself, or unregisters where it goes");
  AddList(command, "--then", order.wishes.lastLines, "Line for the end of the block");
  AddList(command, "--key", arguments->keys, SigningKeyHelp);
  command.add_flag("--older", order.coversOlder,
                   "Also give every file of NEW to all other versions below it");
  command.add_flag("--force", order.force, "Replace files that are published already");
  command.add_flag("--dry-run", order.isTrial, "Tell what would be made, and write nothing");
  command.add_flag("--json", arguments->asJson, JsonHelp);
  command.footer(
      "The upload folder gets the files, in a folder named after the new version, and the script\n"
      "update.txt with one more block. The script is then checked; the exit status is that of "
      "check.\n"
      "Options of the last group may be given several times. All of them can stand in a file, a\n"
      "line each such as keep = [\"config.ini\", \"users.db\"], below a line [make]: --config "
      "names it,\n"
      "and kestrane.toml is read where it is there.\n\n"
      "Example:\n"
      "  kestrane-publish make ledger-2.7.1 ledger-3.2.0 --url https://updates.example/ledger \\\n"
      "    --from 2.7.1 --to 3.2.0 --name Ledger --register reports.ocx --backup rates.txt \\\n"
      "    --then 'EXECUTE|$AppPath\\ledger.exe /migrate|WAIT|HIDE'");
  return [arguments] { return RunMake(*arguments); };
}

Execution DefineKey(CLI::App& command) {
  auto options = std::make_shared<publish::KeyOptions>();
  command.add_option("FILE", options->file, "For the private key; the public one gets .pub behind")
      ->required();
  command.add_option("--url", options->url, "Where the upload folder will be found");
  command.footer(
      "The files are those of openssl, in PEM. A file that is there is never written over.\n\n"
      "Example:\n"
      "  kestrane-publish key ledger.pem --url https://updates.example/ledger");
  return [options] { return publish::RunKey(*options); };
}

Execution DefineSign(CLI::App& command) {
  auto options = std::make_shared<publish::SignOptions>();
  command.add_option("SCRIPT", options->script, "The update script, with its files beside it")
      ->required();
  AddList(command, "--key", options->keys, SigningKeyHelp);
  command.add_option("--updater", options->updater,
                     "File of the updater that the header offers, if it is not beside the script");
  command.add_flag("--json", options->asJson, JsonHelp);
  command.footer(
      "The digest of every file that the script names, and the signatures, take the place of "
      "those\n"
      "that there are. Without --key there is no signature: openssl can add it. A file that is no\n"
      "longer beside the script keeps the digest that one of the keys has signed.\n\n"
      "Example:\n"
      "  kestrane-publish sign site/update.txt --key ledger.pem");
  return [options] { return publish::RunSign(*options); };
}

/// The commands, each with what defines its options.
constexpr struct {
  const char* name;
  const char* purpose;
  Execution (*define)(CLI::App& command);
} Commands[] = {
    {"check", "Tell what is wrong with a script", DefineCheck},
    {"simulate", "Tell what a script does, without doing it", DefineSimulate},
    {"make", "Make the update that turns one folder into another", DefineMake},
    {"serve", "Serve an upload folder to this machine, for a trial", DefineServe},
    {"key", "Make a key that signs updates", DefineKey},
    {"sign", "Put digests and signatures into a script", DefineSign},
};

int RunCommandLine(int argc, char** argv) {
  CLI::App app("Makes updates for Kestrane, and tells what they do before any user does.",
               "kestrane-publish");
  app.set_version_flag("--version", KESTRANE_VERSION);
  app.require_subcommand(1);
  app.allow_windows_style_options(false);  // what begins with a slash is a path
  app.fallthrough();                       // --config may stand behind the command
  app.allow_config_extras(CLI::config_extras_mode::error);
  app.failure_message(publish::TextOfError);
  app.config_formatter(publish::OptionFilesOf(app));
  app.set_config("--config", "kestrane.toml", "File with options, below the [name] of a command");
  std::map<const CLI::App*, Execution> executions;
  for (const auto& [name, purpose, define] : Commands) {
    CLI::App* const command = app.add_subcommand(name, purpose);
    executions[command] = define(*command);
  }
  try {
    std::vector<std::string> arguments = platform::console::Arguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end());  // as the library wants them
    app.parse(std::move(arguments));
    return executions.at(app.get_subcommands().front())();
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : Failed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return RunCommandLine(argc, argv);
  } catch (const std::exception& error) {  // of the file system, or no memory
    std::cerr << "kestrane-publish: " << error.what() << "\n";
    return Failed;
  }
}
