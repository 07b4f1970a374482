#pragma once

// What an order comes to, before anything is written, and why it may have to be refused.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "publish/folder.h"
#include "publish/order.h"

namespace publish {

/// A file for the upload folder.
struct Upload {
  std::filesystem::path file;
  std::filesystem::path target;  // below the upload folder
  bool isPublished = false;      // it is there already, with the same content
};

/// The folders and what is to be made of them.
struct Plan {
  Order order;
  Folder oldFolder;
  Folder newFolder;
  Difference difference;
  std::set<std::string> idlePatterns;  // excluding nothing
  std::string script;                  // the history, then the new script
  std::vector<Upload> uploads;
};

using Problems = std::vector<std::string>;

inline constexpr const char* UpdaterName = "Kestrane.exe";

/// Each adds to the problems, in a sentence each in UTF-8.
void CheckOrder(const Order& order, Problems& problems);
void CheckFolders(const Plan& plan, Problems& problems);

/// What is published already has to stay as it is; finds out what that is.
void CheckUploads(Plan& plan, Problems& problems);

/// Files to be replaced or deleted that are hidden or read-only in the old folder, in UTF-8.
[[nodiscard]] std::vector<std::string> Irreplaceable(const Plan& plan);

/// Files of the upload folder that no URL of the script ends with, by their names below it.
[[nodiscard]] std::vector<std::string> Unnamed(const Plan& plan);

}  // namespace publish
