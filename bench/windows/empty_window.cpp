// The least that a program with a window costs before its window is on the screen.

#include <windows.h>

int main() {
  WNDCLASSEXW description = {};
  description.cbSize = sizeof description;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpfnWndProc = DefWindowProcW;
  description.lpszClassName = L"EmptyWindow";
  RegisterClassExW(&description);
  const HWND window = CreateWindowExW(
      0, description.lpszClassName, L"Empty", WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU,
      CW_USEDEFAULT, CW_USEDEFAULT, 333, 238, nullptr, nullptr, description.hInstance, nullptr);
  ShowWindow(window, SW_SHOWNORMAL);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}
