// The least that the work of an update costs: bare loops over the calls that it cannot do without.
//   floor file SCHEME HOST PORT PATH READSIZE   fetches one file, with reads of READSIZE bytes
//   floor rows SCHEME HOST PORT PATH COUNT      fetches the script PATH.txt, since the first
//                                               request of a process costs more than the others;
//                                               probes, fetches and renames PATH/0, PATH/1 ...
// Everything is put into the current folder.

#include <cstdlib>
#include <string>

#include "bench/calls.h"

namespace {

constexpr std::size_t FastReadSize = 64 * 1024;

bool CarryOutRows(const floors::Server& server, const std::string& folder, int count) {
  if (!floors::Fetch(server, folder + ".txt", "script", FastReadSize)) return false;
  for (int i = 0; i < count; ++i) {
    if (!floors::Probe(server, folder + "/" + std::to_string(i))) return false;
  }
  for (int i = 0; i < count; ++i) {
    const std::string name = std::to_string(i);
    if (!floors::Fetch(server, folder + "/" + name, name + ".tmp", FastReadSize)) return false;
  }
  for (int i = 0; i < count; ++i) {
    const std::string name = std::to_string(i);
    if (!floors::Rename(name + ".tmp", name)) return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 7) return EXIT_FAILURE;
  const std::string work = argv[1];
  const floors::Server server = {argv[2], argv[3], static_cast<std::uint16_t>(std::stoi(argv[4]))};
  const std::string path = argv[5];
  const int number = std::stoi(argv[6]);
  const bool done = work == "file"
                        ? floors::Fetch(server, path, "file", static_cast<std::size_t>(number))
                        : CarryOutRows(server, path, number);
  return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
