// The real window of the native program, of which only the size is looked at; its files; and the
// icon of the Windows program.

#include <cstring>

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
  (void)AskWindow(title, "windowfocus key Return");  // "Finalizar"
  EXPECT_TRUE(Ends());
  EXPECT_EQ(Files(), (Tree{{"a.exe", "old"}, {"a.exe.tmp", "longer"}}));
}

TEST(Files, TellWhenTheLastBytesFindNoRoom) {
  auto full = platform::files::Create("/dev/full");
  EXPECT_TRUE(full && platform::files::Write(full, "x"));
  EXPECT_FALSE(platform::files::Close(std::move(full)));
}

/// Windows XP reads bitmaps only; each begins with the length of its header.
TEST(Icon, HasBitmapsBesideItsCompressedPictures) {
  const std::string icon = ReadWhole(OwnFolder() / "kestrane.ico");
  std::string sizesOfBitmaps;
  const std::size_t end = 6 + 16 * static_cast<std::size_t>(icon.at(4));
  for (std::size_t entry = 6; entry < end; entry += 16) {
    std::uint32_t picture = 0;
    std::memcpy(&picture, icon.data() + entry + 12, sizeof picture);
    if (icon.at(picture) == 40) sizesOfBitmaps += icon[entry];
  }
  EXPECT_EQ(sizesOfBitmaps, "\x10\x20\x30");
}

}  // namespace
