#include "publish/option_errors.h"

#include <iterator>
#include <sstream>
#include <vector>

#include "publish/source.h"
#include "publish/words.h"

namespace publish {
namespace {

using Texts = std::vector<std::string>;

std::string NoCommand(const CLI::App& tool, const std::string& word) {
  Texts commands;
  for (const auto* command : tool.get_subcommands(nullptr)) commands.push_back(command->get_name());
  return '"' + word + "\" is no command" + NearestAmong(commands, word) + ".";
}

/// dashes: what stands before the name of an option where it was written.
std::string NoOption(const CLI::App& command, const std::string& dashes, const std::string& word) {
  Texts options;
  for (const auto* option : command.get_options()) {
    for (const auto& name : option->get_lnames()) options.push_back(dashes + name);
  }
  return '"' + dashes + word + "\" is no option of " + command.get_name() +
         NearestAmong(options, dashes + word) + ".";
}

/// What stands first among the words that the library makes nothing of; empty when it is no
/// misspelt word.
std::string Misspelt(const CLI::App& tool) {
  const auto commands = tool.get_subcommands();
  for (const auto& word : tool.remaining(true)) {
    const bool isOption = word.starts_with("--");
    if (commands.empty() && !isOption) return NoCommand(tool, word);
    if (!isOption) continue;
    const auto& command = commands.empty() ? tool : *commands.front();
    return NoOption(command, "--", word.substr(2, word.find('=') - 2));
  }
  return "";
}

class OptionFile : public CLI::ConfigBase {
 public:
  explicit OptionFile(const CLI::App& app) : tool(app) {}

  [[nodiscard]] std::vector<CLI::ConfigItem> from_config(std::istream& input) const override {
    constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
    std::string text{std::istreambuf_iterator<char>(input), {}};
    if (!IsUtf8(text)) Refuse("The text is not in UTF-8: save it in this encoding.");
    if (text.starts_with(ByteOrderMark)) text.erase(0, ByteOrderMark.size());
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
    const std::string& name = item.parents.front();
    const auto commands =
        tool.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
    if (commands.empty()) Refuse(NoCommand(tool, name));
    const bool isSection = item.name == "++" || item.name == "--";
    if (isSection || commands.front()->get_option_no_throw("--" + item.name) != nullptr) return;
    Refuse(NoOption(*commands.front(), "", item.name));
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
