// The command line, the progress bar and the code page.

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

#include "base/text.h"
#include "platform/pace.h"
#include "run/command_line.h"
#include "run/progress_bar.h"
#include "tests/support/scripted_window.h"

namespace {

using scripted_window::Rectangle;
using scripted_window::state;
using List = std::vector<std::string>;

TEST(CommandLine, IsCutIntoArguments) {
  const struct {
    std::string text;
    List arguments;
  } cases[] = {
      {"", {}},
      {"  a\tb ", {"a", "b"}},
      {R"("a" "" "b")", {"a ", "b"}},
      {R"("ab"cd)", {"abcd"}},
      {R"("say \"hi\"")", {"say \"hi\""}},
      {R"("C:\Ledger\" "next")", {"C:\\Ledger\" next"}},
      {R"("C:\Ledger\\" "next")", {"C:\\Ledger\\\" next"}},
      {"\"a\tb\" \"c", {"a\tb", "c"}},
  };
  for (const auto& [text, arguments] : cases) {
    List expected = arguments;
    expected.insert(expected.begin(), "own");
    EXPECT_EQ(modFunciones::SplitArguments("own", text), expected) << text;
  }
}

TEST(ProgressBar, DrawsSegmentsUpToTheFraction) {
  const struct {
    float fraction;
    std::size_t segments;
    double lastLeft;
    bool flat = false;
    double twipsPerPixel = 15;
  } cases[] = {
      {-1.0F, 0, 0},
      {105.0F / 4530, 0, 0},
      {std::numeric_limits<float>::quiet_NaN(), 0, 0},
      {std::numeric_limits<float>::infinity(), 34, 4470},
      {0.975F, 33, 4335, true},
      {0.975F, 32, 4200},
      {1.0F, 50, 4420, false, 10},
  };
  for (const auto& [fraction, segments, lastLeft, flat, pixel] : cases) {
    SCOPED_TRACE(fraction);
    scripted_window::Reset();
    state.flatLook = flat;
    state.twipsPerPixel = pixel;
    auto& drawn = state.drawn[frmPrincipal::picFile];
    drawn = {{}};  // what was drawn before
    modFunciones::DrawProgressBar(frmPrincipal::picFile, fraction);
    EXPECT_EQ(state.history, std::vector{"picFile " + std::to_string(segments)});
    ASSERT_EQ(drawn.size(), segments);
    if (segments == 0) continue;
    const double bottom = 255 - pixel * (flat ? 4 : 6);
    EXPECT_EQ(drawn.front(), (Rectangle{pixel, pixel, 7 * pixel, bottom}));
    EXPECT_EQ(drawn.back(), (Rectangle{lastLeft, pixel, lastLeft + 6 * pixel, bottom}));
  }
}

TEST(Pace, LooksAtTheWindowAsOftenAsAUserCanTell) {
  platform::Pace pace;
  const std::uint32_t now = UINT32_MAX - 5;  // the counter begins again soon
  pace.Displayed(now);
  pace.EventsHandled(now);
  EXPECT_FALSE(pace.FrameIsOver(now + 29) || pace.EventsAreDue(now + 9));
  EXPECT_TRUE(pace.FrameIsOver(now + 30) && pace.EventsAreDue(now + 10));
}

TEST(Text, KnowsTheLettersOfItsCodePage) {
  using namespace modFunciones;
  using namespace modFunciones::literals;
  EXPECT_EQ("ñÑ¿é€Œ"_ansi, "\xF1\xD1\xBF\xE9\x80\x8C");
  EXPECT_EQ(UpperCase("az{ñé÷ß"_ansi), "AZ{ÑÉ÷ß"_ansi);
  EXPECT_EQ(LowerCase("AZ[ÑÉ×ŒŸ"_ansi), "az[ñé×œÿ"_ansi);
  std::string all(256, '\0');
  std::iota(all.begin(), all.end(), '\0');
  EXPECT_EQ(FromUtf8(ToUtf8(all)), all);
  for (const char* text : {"\xE4\xB8\xAD", "\xC3", "\xC3o"}) EXPECT_FALSE(FromUtf8(text)) << text;
}

}  // namespace
