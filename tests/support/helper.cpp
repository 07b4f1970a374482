// A program for tests to start, wait for and end:
//   helper                    appends "launched" to a log beside itself
//   helper append FILE TEXT   appends a line to a file
//   helper exit CODE          ends after a moment with an exit code
//   helper stay FILE          appends "up" to a file and stays until it is ended or FILE.end is
//   there,
//                             a minute at most

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

int main(int argc, char** argv) {
  using namespace std::chrono_literals;
  const std::string verb = argc > 2 ? argv[1] : "";
  if (argc == 1) std::ofstream(std::string(argv[0]) + ".log", std::ios::app) << "launched\n";
  if (verb == "append" && argc > 3) std::ofstream(argv[2], std::ios::app) << argv[3] << '\n';
  if (verb == "exit") {
    std::this_thread::sleep_for(300ms);
    return std::atoi(argv[2]);
  }
  if (verb == "stay") {
    std::ofstream(argv[2], std::ios::app) << "up\n";
    const std::string end = std::string(argv[2]) + ".end";
    for (int i = 0; i < 600 && !std::ifstream(end); ++i) std::this_thread::sleep_for(100ms);
  }
  return 0;
}
