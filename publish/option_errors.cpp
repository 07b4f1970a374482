#include "publish/option_errors.h"

#include <iterator>
#include <sstream>
#include <vector>

#include "publish/source.h"
#include "publish/words.h"

namespace publish {
namespace {

using Texts = std::vector<std::string>;
using Options = std::vector<const CLI::Option*>;

std::string NoCommand(const CLI::App& tool, const std::string& word) {
  Texts commands;
  for (const auto* command : tool.get_subcommands(nullptr)) commands.push_back(command->get_name());
  return '"' + word + "\" is no command" + NearestAmong(commands, word) + ".";
}

/// With those of its groups, which the library keeps as commands without a name.
Options OptionsOf(const CLI::App& command) {
  Options options = command.get_options();
  for (const auto* part : command.get_subcommands(nullptr)) {
    if (!part->get_name().empty()) continue;
    const Options grouped = part->get_options();
    options.insert(options.end(), grouped.begin(), grouped.end());
  }
  return options;
}

/// options: those that may stand there; dashes: what stands before their names there.
std::string NoOption(const CLI::App& command, const Options& options, const std::string& dashes,
                     const std::string& word) {
  Texts names;
  for (const auto* option : options) {
    for (const auto& name : option->get_lnames()) names.push_back(dashes + name);
  }
  return '"' + dashes + word + "\" is no option of " + command.get_name() +
         NearestAmong(names, dashes + word) + ".";
}

/// name: without its dashes.
std::string NoOptionThere(const CLI::App& tool, const std::string& name) {
  const auto commands = tool.get_subcommands();
  const auto& command = commands.empty() ? tool : *commands.front();
  if (command.get_option_no_throw("--" + name) != nullptr) {
    return "\"--" + name + "\" has to stand behind " + command.get_name() + ".";
  }
  Options options = OptionsOf(command);
  const Options everywhere = tool.get_options();
  options.insert(options.end(), everywhere.begin(), everywhere.end());
  return NoOption(command, options, "--", name);
}

/// What stands first among the words that the library makes nothing of; empty when it is no
/// misspelt word.
std::string Misspelt(const CLI::App& tool) {
  for (const auto& word : tool.remaining(true)) {
    if (word.starts_with("--")) return NoOptionThere(tool, word.substr(2, word.find('=') - 2));
    if (!word.starts_with('-') && tool.get_subcommands().empty()) return NoCommand(tool, word);
  }
  return "";
}

class OptionFile : public CLI::ConfigBase {
 public:
  explicit OptionFile(const CLI::App& app) : tool(app) {}

  [[nodiscard]] std::vector<CLI::ConfigItem> from_config(std::istream& input) const override {
    std::string text{std::istreambuf_iterator<char>(input), {}};
    if (!IsUtf8(text)) Refuse("The text is not in UTF-8: save it in this encoding.");
    if (text.starts_with(Utf8Mark)) text.erase(0, Utf8Mark.size());
    std::istringstream plain(text);
    auto found = ConfigBase::from_config(plain);
    for (const auto& item : found) Check(item);
    return found;
  }

 private:
  [[noreturn]] void Refuse(const std::string& why) const {
    throw CLI::ConfigError(tool.get_config_ptr()->as<std::string>() + ": " + why);
  }

  void Check(const CLI::ConfigItem& item) const {
    if (item.parents.empty()) {
      Refuse('"' + item.name + "\" stands above the line that names a command, such as [make].");
    }
    const std::string name = CLI::detail::join(item.parents, ".");
    const auto commands =
        tool.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    if (commands.empty()) Refuse(NoCommand(tool, name));
    const CLI::App& command = *commands.front();
    const bool isSection = item.name == "++" || item.name == "--";
    const bool isOption = command.get_option_no_throw("--" + item.name) != nullptr;
    const bool isArgument = command.get_option_no_throw(item.name) != nullptr;
    if (isSection || isOption || isArgument) return;
    Options options = OptionsOf(command);
    std::erase_if(options, [](const CLI::Option* option) { return !option->get_configurable(); });
    Refuse(NoOption(command, options, "", item.name));
  }

  const CLI::App& tool;
};

}  // namespace

std::string TextOfError(const CLI::App* tool, const CLI::Error& error) {
  const std::string misspelt = Misspelt(*tool);
  const std::string text = CLI::FailureMessage::simple(tool, error);
  return misspelt.empty() ? text : misspelt + text.substr(text.find('\n'));
}

std::shared_ptr<CLI::Config> OptionFilesOf(const CLI::App& tool) {
  return std::make_shared<OptionFile>(tool);
}

}  // namespace publish
