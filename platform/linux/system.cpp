#include "platform/system.h"

#include <langinfo.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): the one that declares newlocale
#include <sys/file.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/paths.h"
#include "platform/linux/programs.h"

namespace platform::system {
namespace {

// They stand in for the Windows folder and the system folder.
constexpr std::string_view WindowsFolder = R"(\usr\local)";
constexpr std::string_view SystemFolder = R"(\usr\local\lib)";

// Codes of ShellExecute.
constexpr std::int32_t Opened = 33;
constexpr std::int32_t FileNotFound = 2;

const std::string& ExecutablePath() {
  static const std::string own =
      linux_layer::ToProgramPath(linux_layer::TargetOfLink("/proc/self/exe"));
  return own;
}

/// An argument as it has to be written so that the program reads it as one. It knows no way to
/// write an empty one.
std::string Quoted(const std::string& argument) {
  std::string text;
  for (const char character : argument) {
    if (character == '"') text += '\\';
    text += character;
  }
  if (argument.find_first_of(" \t") == std::string::npos) return text;
  // A backslash in front of the closing quote would make it a literal one.
  const auto length = text.find_last_not_of('\\') + 1;
  return '"' + text.substr(0, length) + '"' + text.substr(length);
}

std::size_t Fill(std::string& buffer, std::string_view folder) {
  if (folder.size() > buffer.size()) return folder.size() + 1;
  buffer.replace(0, folder.size(), folder);
  return folder.size();
}

}  // namespace

std::string CommandLineText() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  std::string argument;
  std::getline(file, argument, '\0');  // the program's own name
  std::string text;
  while (std::getline(file, argument, '\0')) {
    text += ' ' + Quoted(modFunciones::FromAnyUtf8(argument));
  }
  return text;
}

std::string ExecutableFolder() {
  const std::string& path = ExecutablePath();
  const auto separator = path.rfind('\\');
  if (separator == std::string::npos) return "";
  return path.substr(0, separator);
}

std::string ExecutableBaseName() {
  const std::string& path = ExecutablePath();
  const std::string name = path.substr(path.rfind('\\') + 1);
  return name.substr(0, name.rfind('.'));
}

void EndTurn::operator()(void* turn) const { (void)std::fclose(static_cast<std::FILE*>(turn)); }

Turn TakeTurn() {
  Turn turn(std::fopen("/proc/self/exe", "re"));
  const bool isOurs =
      turn && flock(fileno(static_cast<std::FILE*>(turn.get())), LOCK_EX | LOCK_NB) == 0;
  return isOurs ? std::move(turn) : nullptr;
}

std::size_t WindowsDirectory(std::string& buffer) { return Fill(buffer, WindowsFolder); }

std::size_t SystemDirectory(std::string& buffer) { return Fill(buffer, SystemFolder); }

std::string DecimalSeparator() {
  static const std::string separator = [] {
    const locale_t locale = newlocale(LC_NUMERIC_MASK, "", nullptr);
    if (locale == nullptr) return std::string(".");  // the environment's is not installed
    std::string radix = modFunciones::FromAnyUtf8(nl_langinfo_l(RADIXCHAR, locale));
    freelocale(locale);
    return radix;
  }();
  return separator;
}

std::int32_t OpenWithShell(const std::string& /*verb*/, const std::string& file,
                           const std::string& parameters, const std::string& folder,
                           int /*showValue*/) {
  const std::string program = linux_layer::FindProgram(file);
  if (program.empty()) return FileNotFound;
  const std::string systemFolder = linux_layer::ToSystemPath(folder);
  std::error_code failure;
  const bool folderExists = std::filesystem::is_directory(systemFolder, failure);
  return linux_layer::Spawn(program, linux_layer::SplitCommandLine(parameters),
                            folderExists ? systemFolder : "")
             ? Opened
             : FileNotFound;
}

void EndProcess() { _exit(0); }

}  // namespace platform::system
