// The real window of the native program, of which only the size is looked at, and its icon.

#include "platform/linux/icon_file.h"
#include "tests/support/program_fixture.h"

namespace {

/// What xdotool says of the program's window; empty while there is none.
std::string AskWindow(const std::string& title, const std::string& request) {
  const std::string command =
      "xdotool search --onlyvisible --name '^" + title + "$' " + request + " 2>/dev/null";
  const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
  std::string text(1000, '\0');
  text.resize(std::fread(text.data(), 1, text.size(), output.get()));
  return text;
}

TEST_F(Program, EndsOnItsFinalScreenWhenADownloadBreaks) {
  const std::string title = "Kestrane test " + std::to_string(getpid());
  sandbox.Write("a.exe", "old");
  server.Serve("/cut", {.body = "longer than this", .cutAt = 6, .stalls = true});
  ServeScript("ADD|$AppPath\\a.exe|" + server.Url("/cut") + "\nDELETE|$AppPath\\a.exe");
  Start({sandbox.Path("kt-app.exe"), "no", title});
  std::string full;
  EXPECT_TRUE(Eventually([&] { return !(full = AskWindow(title, "getwindowgeometry")).empty(); }));
  server.Release();
  EXPECT_TRUE(Eventually([&] { return AskWindow(title, "getwindowgeometry") != full; })) << full;
  (void)AskWindow(title, "windowfocus key Return");  // "Finalizar"
  EXPECT_TRUE(Ends());
  EXPECT_EQ(Files(), (Tree{{"a.exe", "old"}, {"a.exe.tmp", "longer"}}));
}

TEST(BuiltInIcon, HasBitmapsBesideItsLargestPicture) {
  for (const auto& [asked, found] : {std::pair{16, 16}, {32, 32}, {48, 48}, {64, 48}, {256, 48}}) {
    const auto icon =
        platform::linux_layer::ReadIcon(platform::linux_layer::BuiltInIconFile(), asked);
    ASSERT_TRUE(icon) << asked;
    EXPECT_EQ(icon->w(), found);
  }
}

}  // namespace
