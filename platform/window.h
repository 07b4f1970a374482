#pragma once

// The program's one window, its controls, message boxes and events. Everything belongs to the one
// user-interface thread. Positions and sizes are in twips (1/1,440 inch); controls are named by
// their index in the layout. Nothing here fails visibly: what the system refuses is left undone.
//
// Texts that are set and pictures that are refreshed while the button can be pressed are displayed
// by the next yield, that of a loop being one only when a frame is over (platform/pace.h), or by
// what else lets the user look: Show, SetEnabled and ShowMessageBox. While the button is disabled,
// and yields are rare, they are displayed before the call returns. Everything else that is changed
// changes at once, and is painted with the events of the next yield.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace platform::window {

enum class ControlKind { Label, WrappingLabel, RightAlignedLabel, PictureBox, ProgramIcon, Button };

struct ControlLayout {
  ControlKind kind;
  int left;
  int top;
  int width;
  int height;
};

struct Layout {
  std::string_view caption;
  int clientWidth;
  int clientHeight;
  std::span<const ControlLayout> controls;
};

/// What the window calls while events are processed, and Show for its first resize.
struct Handlers {
  void (*resized)();
  void (*buttonClicked)();
  /// The user asked for the window to be closed by other means than a control; it stays open.
  void (*closing)();
};

/// Creates the window, not yet visible, with its controls empty and enabled.
void Create(const Layout& layout, const Handlers& handlers);

/// Makes the window visible. The first call ends with a resize event.
void Show();

void SetWindowCaption(std::string_view caption);

/// Keeps the icon as it is when the file is no icon. Linux: always.
void SetWindowIcon(const std::string& path);

/// Height with title bar and borders. Linux: those that the Windows window has, whatever the window
/// manager draws.
void SetWindowHeight(int height);

/// A text that is already there repaints nothing.
void SetText(int control, std::string_view value);
[[nodiscard]] std::string Text(int control);

void SetVisible(int control, bool visible);
void SetEnabled(int control, bool enabled);
[[nodiscard]] bool IsEnabled(int control);
void SetTop(int control, int top);

/// Twips per pixel of the screen, 1,440 divided by its dots per inch. Linux: 15.
[[nodiscard]] double TwipsPerPixelX();
[[nodiscard]] double TwipsPerPixelY();

/// A picture box keeps what was drawn in it until it is erased.
struct PictureBox {
  bool flatLook;
  int width;   // borders included
  int height;  // borders included
  std::uint32_t foregroundColour;
};
[[nodiscard]] PictureBox DescribePictureBox(int control);
void ErasePictureBox(int control);
/// Corners inside the borders, the lower right one not included.
void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t colour);
/// What was drawn is to be displayed; nothing when the screen shows it already.
void RefreshPictureBox(int control);

enum class MousePointer { Default = 0, Hourglass = 11 };
void SetMousePointer(MousePointer pointer);

/// Modal. style and result are the numbers of the Windows call MessageBox. Linux: the buttons are
/// those of MB_OK or MB_YESNO, and Escape is "No".
int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title);

/// Yields: displays and paints what waits, handles the events that are waiting, and returns.
void ProcessPendingEvents();

/// Yields in a loop that does so at every block it reads: the same, as often as a user can tell
/// (see platform/pace.h).
void ProcessPendingEventsInLoop();

/// Handles events until the process ends.
[[noreturn]] void RunEventLoop();

}  // namespace platform::window
