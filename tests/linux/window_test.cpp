// The real window of the native program, of which only the size is looked at; its files; and the
// icon of the Windows program.

#include "platform/files.h"
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
  // "Finalizar". The window goes when the key is pressed, so it is released for whoever is left.
  (void)AskWindow(title, "windowfocus key --window 0 Return");
  EXPECT_TRUE(Ends());
  EXPECT_EQ(Files(), (Tree{{"a.exe", "old"}, {"a.exe.tmp", "longer"}}));
}

TEST(Files, TellWhenTheLastBytesFindNoRoom) {
  auto full = platform::files::Create("/dev/full");
  EXPECT_TRUE(full && platform::files::Write(full, "x"));
  EXPECT_FALSE(platform::files::Close(std::move(full)));
}

/// Windows XP reads bitmaps only; each has a header with its length, width and double height.
TEST(Icon, HasBitmapsBesideItsCompressedPictures) {
  const std::string icon = ReadWhole(OwnFolder() / "kestrane.ico");
  for (const char size : {'\x10', '\x20', '\x30'}) {
    const char header[] = {40, 0, 0, 0, size, 0, 0, 0, static_cast<char>(2 * size), 0, 0, 0};
    EXPECT_NE(icon.find({header, sizeof header}), std::string::npos) << int{size};
  }
}

}  // namespace
