// The window, of the system's own controls, which carry out what they are told at once. But a
// download sets texts and draws bars at every block: so a text is kept beside its control, a bar
// as the rectangles of its Picture, and both are handed over when a frame of 30 ms is over
// (platform/pace.h), all that wait together. Bars are turned into pixels when the system asks for
// them to be painted, and only if they show something else than before. While the button is
// disabled the program may stand still after any call: then each change is painted at once, by
// taking the messages that ask for painting, and no others, from the queue.
//
// Tried and left:
// - Painting each bar as soon as it is drawn, with UpdateWindow: thousands of times a second; and
//   under Wine the screen shows it only once the program has looked for messages and found none.
// - Times of its own for every control, of 10 and of 30 ms: the progress of the file and that of
//   all files, which belong together, were up to 100 ms apart.
// - Passing over every yield within 10 ms of the last one: a row that blocks then left the window
//   in the phase before. Only a loop that reads blocks may pass over one.

#include "platform/window.h"

#include <windows.h>

#include <commctrl.h>

#include <array>
#include <cmath>
#include <vector>

#include "platform/pace.h"
#include "platform/picture.h"
#include "platform/windows/resources.h"
#include "platform/windows/text.h"

namespace platform::window {
namespace {

using windows_layer::ToUtf16;

constexpr double TwipsPerInch = 1440.0;
constexpr int UnscaledDotsPerInch = 96;
constexpr int UnscaledIconSize = 32;
constexpr WORD FirstControlId = 100;  // of the control with index 0
constexpr const wchar_t* WindowClass = L"KestraneWindow";
constexpr const wchar_t* PictureClass = L"KestranePicture";
constexpr DWORD WindowStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;

/// Twips: 8 points and less. A label takes the first size in which its text fits, so that no
/// message is cut off.
constexpr std::array<int, 4> FontSizes = {160, 150, 140, 130};

struct Control {
  HWND handle = nullptr;
  ControlLayout layout{};
  bool waits = false;  // the screen shows an older text or picture
  std::string text;
  Picture picture;
};

// Written by Create, and where not by the procedures that change the control in question.
HWND mainWindow = nullptr;
Handlers handlers{};
std::vector<Control> controls;
std::array<HFONT, FontSizes.size()> fonts{};
double twipsPerPixelX = 0;
double twipsPerPixelY = 0;
bool resizeEventsOn = false;  // set by the first Show
bool displayMayWait = true;   // not while the button is disabled: what follows may block
Pace pace;

HINSTANCE Instance() { return GetModuleHandleW(nullptr); }

Control& At(int control) { return controls[static_cast<std::size_t>(control)]; }

int PixelsX(double twips) { return static_cast<int>(std::lround(twips / twipsPerPixelX)); }
int PixelsY(double twips) { return static_cast<int>(std::lround(twips / twipsPerPixelY)); }

/// The run must not stand still behind a box of the system's own, nor may the system offer to end
/// it because it has not looked at its events for a while.
void KeepSystemDialogsAway() {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  DisableProcessWindowsGhosting();
}

void MeasureScreen() {
  const HDC screen = GetDC(nullptr);
  twipsPerPixelX = TwipsPerInch / GetDeviceCaps(screen, LOGPIXELSX);
  twipsPerPixelY = TwipsPerInch / GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
}

int DotsPerInch() { return static_cast<int>(std::lround(TwipsPerInch / twipsPerPixelY)); }

void CreateFonts() {
  for (std::size_t i = 0; i < fonts.size(); ++i) {
    fonts[i] = CreateFontW(-PixelsY(FontSizes[i]), 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE,
                           DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                           DEFAULT_QUALITY, DEFAULT_PITCH | FF_DONTCARE, L"MS Shell Dlg");
  }
}

HICON BuiltInIcon(int size) {
  return static_cast<HICON>(LoadImageW(Instance(), MAKEINTRESOURCEW(KESTRANE_ICON), IMAGE_ICON,
                                       size, size, LR_DEFAULTCOLOR));
}

LRESULT PaintPicture(HWND picture) {
  PAINTSTRUCT paint;
  const HDC context = BeginPaint(picture, &paint);
  FillRect(context, &paint.rcPaint, GetSysColorBrush(COLOR_WINDOW));
  for (const auto& control : controls) {
    if (control.handle != picture) continue;
    for (const auto& rectangle : control.picture.Shown()) {
      const RECT area = {PixelsX(rectangle.left), PixelsY(rectangle.top), PixelsX(rectangle.right),
                         PixelsY(rectangle.bottom)};
      SetBkColor(context, rectangle.colour);
      ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    }
  }
  EndPaint(picture, &paint);
  return 0;
}

LRESULT CALLBACK PictureProcedure(HWND picture, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT) return PaintPicture(picture);
  if (message == WM_ERASEBKGND) return TRUE;  // painting fills the background
  if (message == WM_GETDLGCODE) return DLGC_STATIC;
  return DefWindowProcW(picture, message, wParam, lParam);
}

HWND Button() {
  for (const auto& control : controls) {
    if (control.layout.kind == ControlKind::Button) return control.handle;
  }
  return nullptr;
}

/// False while a message box is open: its owner takes no input then, whoever sends it.
bool TakesInput() { return IsWindowEnabled(mainWindow) != FALSE; }

LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      if (resizeEventsOn) handlers.resized();
      return 0;
    case WM_COMMAND: {
      const bool isClick = HIWORD(wParam) == BN_CLICKED && LOWORD(wParam) == GetDlgCtrlID(Button());
      if (isClick && TakesInput() && IsWindowEnabled(Button()) != FALSE) handlers.buttonClicked();
      return 0;
    }
    case WM_CLOSE:
      if (TakesInput()) handlers.closing();
      return 0;
    case WM_QUERYENDSESSION:  // whoever logs off has to wait until no file is half replaced
      return IsWindowEnabled(Button());
    case WM_SETFOCUS:
      SetFocus(Button());
      return 0;
    case DM_GETDEFID:  // the button that Enter presses
      return MAKELRESULT(GetDlgCtrlID(Button()), DC_HASDEFID);
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

void RegisterClasses() {
  WNDCLASSEXW description = {};
  description.cbSize = sizeof description;
  description.hInstance = Instance();
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.lpfnWndProc = PictureProcedure;
  description.lpszClassName = PictureClass;
  RegisterClassExW(&description);

  description.hIcon = BuiltInIcon(GetSystemMetrics(SM_CXICON));
  description.hIconSm = BuiltInIcon(GetSystemMetrics(SM_CXSMICON));
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpfnWndProc = WindowProcedure;
  description.lpszClassName = WindowClass;
  RegisterClassExW(&description);
}

void CreateMainWindow(const Layout& layout) {
  RECT area = {0, 0, PixelsX(layout.clientWidth), PixelsY(layout.clientHeight)};
  AdjustWindowRect(&area, WindowStyle, FALSE);
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  RECT desktop;
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &desktop, 0);
  mainWindow = CreateWindowExW(WS_EX_CONTROLPARENT, WindowClass, ToUtf16(layout.caption).c_str(),
                               WindowStyle, (desktop.left + desktop.right - width) / 2,
                               (desktop.top + desktop.bottom - height) / 2, width, height, nullptr,
                               nullptr, Instance(), nullptr);
}

struct SystemControl {
  const wchar_t* className;
  DWORD style;
  DWORD extendedStyle;
};

SystemControl SystemControlOf(ControlKind kind) {
  constexpr DWORD OneLine = SS_NOPREFIX | SS_ENDELLIPSIS;
  switch (kind) {
    case ControlKind::Label:
      return {L"STATIC", SS_LEFT | OneLine, 0};
    case ControlKind::RightAlignedLabel:
      return {L"STATIC", SS_RIGHT | OneLine, 0};
    case ControlKind::WrappingLabel:
      return {L"STATIC", SS_LEFT | SS_NOPREFIX, 0};
    case ControlKind::ProgramIcon:
      return {L"STATIC", SS_ICON | SS_CENTERIMAGE, 0};
    case ControlKind::PictureBox:
      return {PictureClass, 0, WS_EX_CLIENTEDGE};
    case ControlKind::Button:
      break;
  }
  return {L"BUTTON", BS_DEFPUSHBUTTON | WS_TABSTOP | WS_GROUP, 0};
}

void CreateControl(const ControlLayout& layout) {
  const SystemControl control = SystemControlOf(layout.kind);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the system takes the id in the place of a menu
  const auto id = reinterpret_cast<HMENU>(FirstControlId + controls.size());
  const HWND handle = CreateWindowExW(control.extendedStyle, control.className, L"",
                                      WS_CHILD | WS_VISIBLE | control.style, PixelsX(layout.left),
                                      PixelsY(layout.top), PixelsX(layout.width),
                                      PixelsY(layout.height), mainWindow, id, Instance(), nullptr);
  SendMessageW(handle, WM_SETFONT, reinterpret_cast<WPARAM>(fonts.front()), FALSE);
  if (layout.kind == ControlKind::ProgramIcon) {
    const HICON icon = BuiltInIcon(MulDiv(UnscaledIconSize, DotsPerInch(), UnscaledDotsPerInch));
    SendMessageW(handle, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
  }
  controls.emplace_back();
  controls.back().handle = handle;
  controls.back().layout = layout;
}

HFONT LargestFittingFont(HWND label, const std::wstring& text, bool wraps) {
  RECT room;
  GetClientRect(label, &room);
  const HDC context = GetDC(label);
  const HGDIOBJ former = GetCurrentObject(context, OBJ_FONT);
  HFONT fitting = fonts.back();
  for (const HFONT font : fonts) {
    RECT needed = room;
    SelectObject(context, font);
    DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &needed,
              DT_CALCRECT | DT_NOPREFIX | (wraps ? DT_WORDBREAK : DT_SINGLELINE));
    if (needed.right <= room.right && needed.bottom <= room.bottom) {
      fitting = font;
      break;
    }
  }
  SelectObject(context, former);
  ReleaseDC(label, context);
  return fitting;
}

void ShowText(Control& control) {
  const std::wstring text = ToUtf16(control.text);
  if (control.layout.kind != ControlKind::Button) {
    const bool wraps = control.layout.kind == ControlKind::WrappingLabel;
    const HFONT font = LargestFittingFont(control.handle, text, wraps);
    SendMessageW(control.handle, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  SetWindowTextW(control.handle, text.c_str());
}

void Display(Control& control) {
  control.waits = false;
  if (control.layout.kind != ControlKind::PictureBox) return ShowText(control);
  control.picture.Show();
  InvalidateRect(control.handle, nullptr, FALSE);
}

void DisplayWhatWaits() {
  for (auto& control : controls) {
    if (control.waits) Display(control);
  }
  pace.Displayed(GetTickCount());
}

/// Paints without looking at other events. (Wine brings to the screen what was painted when a
/// program looks for messages and finds none.)
void Paint() {
  MSG message;
  while (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE) != FALSE) {
    DispatchMessageW(&message);
  }
}

void DisplaySoon(Control& control) {
  control.waits = true;
  if (displayMayWait) return;
  Display(control);
  Paint();
}

void Dispatch(MSG& message) {
  if (IsDialogMessageW(mainWindow, &message) != FALSE) return;
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

void HandleEvents() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) Dispatch(message);
  pace.EventsHandled(GetTickCount());
}

}  // namespace

void Create(const Layout& layout, const Handlers& callbacks) {
  handlers = callbacks;
  KeepSystemDialogsAway();
  InitCommonControls();  // Windows XP makes no controls for a program with a manifest without it
  MeasureScreen();
  CreateFonts();
  RegisterClasses();
  CreateMainWindow(layout);
  for (const auto& control : layout.controls) CreateControl(control);
}

void Show() {
  DisplayWhatWaits();
  ShowWindow(mainWindow, SW_SHOWNORMAL);
  // The first call obeys whoever started the process, who may have asked for another size or none.
  if (IsWindowVisible(mainWindow) == FALSE || IsZoomed(mainWindow) != FALSE) {
    ShowWindow(mainWindow, SW_SHOWNORMAL);
  }
  if (!resizeEventsOn) {
    resizeEventsOn = true;
    handlers.resized();
  }
}

void SetWindowCaption(std::string_view caption) {
  SetWindowTextW(mainWindow, ToUtf16(caption).c_str());
}

void SetWindowIcon(const std::string& path) {
  for (const auto& [kind, size] : {std::pair{ICON_BIG, SM_CXICON}, {ICON_SMALL, SM_CXSMICON}}) {
    const int pixels = GetSystemMetrics(size);
    const HANDLE icon =
        LoadImageA(nullptr, path.c_str(), IMAGE_ICON, pixels, pixels, LR_LOADFROMFILE);
    if (icon == nullptr) return;
    SendMessageW(mainWindow, WM_SETICON, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(icon));
  }
}

void SetWindowHeight(int height) {
  if (IsIconic(mainWindow) != FALSE) ShowWindow(mainWindow, SW_RESTORE);  // an icon has no height
  RECT area;
  GetWindowRect(mainWindow, &area);
  SetWindowPos(mainWindow, nullptr, 0, 0, area.right - area.left, PixelsY(height),
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void SetText(int control, std::string_view value) {
  Control& target = At(control);
  if (target.text == value) return;
  target.text = value;
  DisplaySoon(target);
}

std::string Text(int control) { return At(control).text; }

void SetVisible(int control, bool visible) {
  ShowWindow(At(control).handle, visible ? SW_SHOWNA : SW_HIDE);
}

void SetEnabled(int control, bool enabled) {
  // What was pressed while the control was disabled must not reach it when it is enabled.
  if (enabled && !IsEnabled(control)) HandleEvents();
  DisplayWhatWaits();
  EnableWindow(At(control).handle, enabled ? TRUE : FALSE);
  displayMayWait = IsWindowEnabled(Button()) != FALSE;
  if (enabled && GetActiveWindow() == mainWindow) SetFocus(Button());
}

bool IsEnabled(int control) { return IsWindowEnabled(At(control).handle) != FALSE; }

void SetTop(int control, int top) {
  Control& target = At(control);
  SetWindowPos(target.handle, nullptr, PixelsX(target.layout.left), PixelsY(top), 0, 0,
               SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

double TwipsPerPixelX() { return twipsPerPixelX; }
double TwipsPerPixelY() { return twipsPerPixelY; }

PictureBox DescribePictureBox(int control) {
  const Control& box = At(control);
  const auto style = static_cast<DWORD>(GetWindowLongW(box.handle, GWL_EXSTYLE));
  return {(style & WS_EX_CLIENTEDGE) == 0, box.layout.width, box.layout.height,
          GetSysColor(COLOR_HIGHLIGHT)};
}

void ErasePictureBox(int control) { At(control).picture.Erase(); }

void DrawFilledRectangle(int control, double left, double top, double right, double bottom,
                         std::uint32_t colour) {
  At(control).picture.Draw({left, top, right, bottom, colour});
}

void RefreshPictureBox(int control) {
  Control& box = At(control);
  if (box.picture.HasChanged()) {
    DisplaySoon(box);
  } else {
    box.waits = false;
  }
}

void SetMousePointer(MousePointer pointer) {
  // Both at the first call: later a component may keep the system from loading anything.
  static const HCURSOR hourglass = LoadCursorW(nullptr, IDC_WAIT);
  static const HCURSOR arrow = LoadCursorW(nullptr, IDC_ARROW);
  SetCursor(pointer == MousePointer::Hourglass ? hourglass : arrow);
}

int ShowMessageBox(std::string_view text, std::uint32_t style, std::string_view title) {
  DisplayWhatWaits();
  return MessageBoxW(mainWindow, ToUtf16(text).c_str(), ToUtf16(title).c_str(), style);
}

void ProcessPendingEvents() {
  DisplayWhatWaits();
  HandleEvents();
}

void ProcessPendingEventsInLoop() {
  if (pace.FrameIsOver(GetTickCount())) DisplayWhatWaits();
  if (pace.EventsAreDue(GetTickCount())) HandleEvents();
}

void RunEventLoop() {
  MSG message;
  while (true) {
    if (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
  }
}

}  // namespace platform::window
