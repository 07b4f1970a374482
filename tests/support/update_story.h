#pragma once

// An update with every kind of row over files that are there and files that are not, and what holds
// of its files however it ends.

#include <gtest/gtest.h>

#include "tests/support/sandbox.h"

class UpdateStory {
 public:
  static constexpr const char* Script = "/KDvelomar2.txt";
  using Tree = std::map<std::string, std::string>;

  /// size: bytes that every new file has beside a few.
  explicit UpdateStory(std::size_t size = 0) : filling(size, '.') {}

  /// Fills the sandbox and puts the script on the server, or what stands for them.
  void Prepare(auto& server, const auto& sandbox) const {
    sandbox.Fill(Before);
    std::string script = "0.0.1|x\nNAME|x\nVERSION|<|3.0.0";
    for (const std::string row : {"ADD|a", "ADD|new/b", "UPDATE|c", "DELETE|e", "UPDATE|d"}) {
      const std::string url = "/" + row.substr(row.size() - 1);
      const auto bar = row.find('|') + 1;
      server.Serve(url, {NewContent(row)});
      script += "\n" + row.substr(0, bar) + sandbox.Path(row.substr(bar)) + "|" + server.Url(url);
    }
    server.Serve(Script, {.body = script});
  }

  /// The files of an update that went well.
  [[nodiscard]] Tree After() const {
    Tree tree = {{"a.bak", "old a"}};
    for (const std::string path : {"a", "new/b", "c", "d"}) tree[path] = New(path);
    return tree;
  }

  /// Of every destination the old or the whole new content is still there.
  void ExpectNothingLost(const Tree& left) const {
    for (const std::string path : {"a", "new/b", "c", "d"}) {
      const auto holds = [&](const std::string& companion, const std::string& content) {
        const auto found = left.find(path + companion);
        return found != left.end() && found->second == content;
      };
      const auto before = Before.find(path);
      const bool old =
          before == Before.end() || holds("", before->second) || holds(".bak", before->second);
      EXPECT_TRUE(old || holds("", New(path)) || holds(".tmp", New(path))) << path << " is lost";
    }
  }

  /// The files of an update that goes well after one that left these: an ADD backs up what the one
  /// before it put in place.
  [[nodiscard]] Tree AfterOnceMore(const Tree& left) const {
    Tree tree = After();
    for (const std::string path : {"a", "new/b"}) {
      if (left.contains(path) && left.at(path) == New(path)) tree[path + ".bak"] = New(path);
    }
    return tree;
  }

  const Tree Before = {{"a", "old a"}, {"a.bak", "older a"}, {"c", "old c"}, {"e", "old e"}};

 private:
  /// What is downloaded for a path whose last letter is the name of the file.
  [[nodiscard]] std::string NewContent(const std::string& path) const {
    return "new " + path.substr(path.size() - 1) + filling;
  }
  [[nodiscard]] std::string New(const std::string& path) const { return Shown(NewContent(path)); }

  std::string filling;
};
