#pragma once

// Everything beneath the core but the window, in memory: files, servers, processes, components and
// the machine. It tells the window's history what the program does.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/processes.h"

namespace scripted_system {

using Tree = std::map<std::string, std::string>;

/// What an address answers.
struct Page {
  std::string body = "";
  std::string status = "200";
  std::optional<std::string> length =
      std::nullopt;  // as HEAD tells it, that of the body if not given
  std::optional<std::int64_t> announced = std::nullopt;  // by GET, the same; -1 for none
  std::string secure = "";                               // the verbs that are answered over https
  std::size_t breaksAt = SIZE_MAX;                       // bytes of the body before a read fails
};

struct State {
  std::string commandLine = R"("2.7.1" "C:\x" "http://s/KDvelomar.txt" "app.exe")";
  std::string ownName = "Kestrane";
  Tree files = {};  // by path
  std::set<std::string> folders = {"C:\\", "C:\\Kt\\"};
  platform::files::DiskSpace space = {1, 1024, 1'000'000};
  std::map<std::string, Page> web = {};  // by URL
  bool offline = false;
  std::vector<platform::processes::Entry> processes = {};
  std::int32_t systemVersion = 10;
  bool workerHangs = false;
  int polls = 0;  // before a program that is waited for has ended, with 259

  std::vector<std::string> operations = {};  // on files so far, such as "Delete a.exe"
  std::size_t faultAt = 0;                   // the operation that goes wrong, from 1 on; 0 for none
  std::string faultOn = "";                  // or the one of this name
  bool dies = false;                         // it ends the process, otherwise it fails
  std::string noMemoryAt = "";  // a call, as the history tells it, that finds no memory
  int open = 0;                 // handles
};
extern State state;

/// Thrown when the process ends.
struct ProcessEnded {};

/// Stand in for a sandbox and a server: the own folder, C:\Kt, and http://s.
struct Disk {
  [[nodiscard]] std::string Path(const std::string& name) const;
  void Fill(const Tree& files) const;
  [[nodiscard]] scripted_system::Tree Tree() const;
};
struct Web {
  [[nodiscard]] std::string Url(const std::string& path) const { return "http://s" + path; }
  void Serve(const std::string& path, const Page& page) const { state.web[Url(path)] = page; }
};

}  // namespace scripted_system
