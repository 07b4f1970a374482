// A program for tests to start, wait for and end:
//   helper                    appends "launched" to a log beside itself
//   helper append FILE TEXT   appends a line to a file after a moment, and ends with exit code 259
//   helper stay FILE          appends "up" to a file and stays until it is ended, until there is
//                             FILE.end, or for a minute

#include <algorithm>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>

static void AppendLine(const std::string& path, const std::string& line) {
  std::ofstream(path, std::ios::app | std::ios::binary) << line << '\n';
}

int main(int argc, char** argv) {
  using namespace std::chrono_literals;
  const std::string verb = argc > 2 ? argv[1] : "";
  std::string file = argc > 2 ? argv[2] : "";
  std::replace(file.begin(), file.end(), '\\', '/');
  if (argc == 1) AppendLine(std::string(argv[0]) + ".log", "launched");
  if (verb == "append" && argc > 3) {
    std::this_thread::sleep_for(300ms);
    AppendLine(file, argv[3]);
    return 259;  // STILL_ACTIVE, but it is not
  }
  if (verb == "stay") {
    AppendLine(file, "up");
    for (int i = 0; i < 600 && !std::ifstream(file + ".end"); ++i) {
      std::this_thread::sleep_for(100ms);
    }
  }
  return 0;
}
