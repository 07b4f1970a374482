#include "platform/linux/programs.h"

#include <spawn.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <system_error>

#include "base/text.h"
#include "platform/linux/paths.h"

namespace platform::linux_layer {
namespace {

constexpr int FirstOwnDescriptor = 3;  // behind the standard streams

bool IsExecutable(const std::string& systemPath) {
  std::error_code failure;
  return std::filesystem::is_regular_file(systemPath, failure) &&
         access(systemPath.c_str(), X_OK) == 0;
}

std::vector<std::string> SearchedFolders() {
  const std::string own = TargetOfLink("/proc/self/exe");
  std::vector<std::string> folders = {own.substr(0, own.rfind('/') + 1), "./"};
  const char* path = std::getenv("PATH");
  std::istringstream entries(path != nullptr ? path : "");
  for (std::string entry; std::getline(entries, entry, ':');) folders.push_back(entry + "/");
  return folders;
}

/// What a started program is given: no open files but the standard streams, a folder, and the
/// system's own way with broken pipes.
class SpawnSettings {
 public:
  explicit SpawnSettings(const std::string& folder) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addclosefrom_np(&actions, FirstOwnDescriptor);
    if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawnattr_init(&attributes);
    sigset_t pipeSignal;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &pipeSignal);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};
};

}  // namespace

std::vector<std::string> SplitCommandLine(const std::string& commandLine) {
  std::vector<std::string> elements;
  bool inElement = false;
  bool inQuotes = false;
  for (const char character : commandLine) {
    if (!inQuotes && (character == ' ' || character == '\t')) {
      inElement = false;
      continue;
    }
    if (!inElement) elements.emplace_back();
    inElement = true;
    std::string& element = elements.back();
    if (character != '"') {
      element += character;
    } else if (element.ends_with('\\')) {
      element.back() = '"';
    } else {
      inQuotes = !inQuotes;
    }
  }
  return elements;
}

std::string FindProgram(const std::string& name) {
  const std::string path = ToSystemPath(name);
  const bool hasFolder = path.find('/') != std::string::npos;
  for (const auto& folder : hasFolder ? std::vector<std::string>{""} : SearchedFolders()) {
    for (const char* extension : {"", ".exe"}) {
      const std::string program = folder + path + extension;
      if (IsExecutable(program)) return std::filesystem::absolute(program).string();
    }
  }
  return "";
}

std::optional<pid_t> Spawn(const std::string& systemPath,
                           const std::vector<std::string>& parameters,
                           const std::string& systemFolder) {
  std::vector<std::string> texts = {systemPath};
  for (const auto& parameter : parameters) texts.push_back(modFunciones::ToUtf8(parameter));
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (auto& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);

  const SpawnSettings settings(systemFolder);
  pid_t child = 0;
  if (posix_spawn(&child, systemPath.c_str(), &settings.actions, &settings.attributes,
                  arguments.data(), environ) != 0) {
    return std::nullopt;
  }
  return child;
}

}  // namespace platform::linux_layer
