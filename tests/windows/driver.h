#pragma once

// Drives the real program as its user does: starts it, reads its window, answers its boxes.

#include <windows.h>

#include <string>
#include <vector>

#include "run/progress_window.h"
#include "tests/support/sandbox.h"

namespace driver {

using Control = frmPrincipal::Control;

/// A run of the program. The window is looked for anew at every call, so it may be that of the
/// process that took over.
class ProgramRun {
 public:
  /// Each argument goes in quotes onto the command line.
  ProgramRun(const std::string& program, const std::vector<std::string>& arguments);
  ~ProgramRun();  // ends the process, if it has not ended by itself
  ProgramRun(const ProgramRun&) = delete;
  ProgramRun& operator=(const ProgramRun&) = delete;

  [[nodiscard]] bool WaitForEnd() const;
  [[nodiscard]] bool HasEnded() const;

 private:
  HANDLE process = nullptr;
};

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
