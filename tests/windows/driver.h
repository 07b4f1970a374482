#pragma once

// Drives the real program as its user does: reads its window, answers its boxes. The window is
// looked for anew at every call, so it may be that of the process that took over.

#include <windows.h>

#include <string>
#include <string_view>

#include "run/progress_window.h"

namespace driver {

using Control = frmPrincipal::Control;

/// The program's visible window, or null.
[[nodiscard]] HWND Window();
[[nodiscard]] HWND At(Control control);
/// Texts in the program's code page.
[[nodiscard]] std::string Caption();
[[nodiscard]] std::string Text(Control control);
[[nodiscard]] bool WaitForText(Control control, std::string_view text);
/// Waits for the final screen and returns its message.
[[nodiscard]] std::string FinalMessage();
void Click(Control control);
/// Corners in the client area, as "left,top,width,height" in pixels.
[[nodiscard]] std::string Place(Control control);

/// The open message box that the window owns, or null.
[[nodiscard]] HWND Box();
/// Waits for a message box and returns "title|text".
[[nodiscard]] std::string BoxText();
/// Presses a button of the box, such as IDYES, and waits until the box is gone.
void AnswerBox(int button);

}  // namespace driver
