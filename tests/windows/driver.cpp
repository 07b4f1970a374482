#include "tests/windows/driver.h"

#include "platform/text.h"
#include "tests/support/sandbox.h"

namespace driver {
namespace {

constexpr int FirstControlId = 100;

std::string WindowText(HWND window) {
  wchar_t text[1024] = L"";
  // Not WM_GETTEXT: the program answers no messages while it waits for its server.
  InternalGetWindowText(window, text, std::size(text));
  std::string narrow;
  for (const wchar_t* unit = text; *unit != 0; ++unit) {
    const auto& mapped = platform::text::CodePointsFrom0x80;
    const auto found = std::find(mapped.begin(), mapped.end(), *unit);
    narrow += static_cast<char>(found == mapped.end() ? *unit : 0x80 + (found - mapped.begin()));
  }
  return narrow;
}

}  // namespace

HWND Window() {
  const HWND window = FindWindowW(L"KestraneWindow", nullptr);
  return IsWindowVisible(window) != FALSE ? window : nullptr;
}

HWND At(Control control) { return GetDlgItem(Window(), FirstControlId + control); }
std::string Caption() { return WindowText(Window()); }
std::string Text(Control control) { return WindowText(At(control)); }

bool WaitForText(Control control, std::string_view text) {
  return Eventually([&] { return Window() != nullptr && Text(control) == text; });
}

std::string FinalMessage() {
  if (!WaitForText(frmPrincipal::btCancelar, "Finalizar")) return "(no final screen)";
  // The message is written behind the button's caption.
  DWORD_PTR ignored = 0;
  SendMessageTimeoutW(Window(), WM_NULL, 0, 0, SMTO_NORMAL, 5000, &ignored);
  return Text(frmPrincipal::lblMensaje);
}

void Click(Control control) { PostMessageW(At(control), BM_CLICK, 0, 0); }

std::string Place(Control control) {
  RECT area;
  GetWindowRect(At(control), &area);
  MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&area), 2);
  return std::to_string(area.left) + "," + std::to_string(area.top) + "," +
         std::to_string(area.right - area.left) + "," + std::to_string(area.bottom - area.top);
}

HWND Box() {
  for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr;) {
    if (GetWindow(box, GW_OWNER) == Window() && IsWindowVisible(box) != FALSE) return box;
  }
  return nullptr;
}

std::string BoxText() {
  constexpr int MessageId = 0xFFFF;
  if (!Eventually([] { return Box() != nullptr; })) return "(no message box)";
  return WindowText(Box()) + "|" + WindowText(GetDlgItem(Box(), MessageId));
}

void AnswerBox(int button) {
  const HWND box = Box();
  PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0);
  (void)Eventually([box] { return IsWindow(box) == FALSE; });
}

}  // namespace driver
