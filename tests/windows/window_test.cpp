// The real program as its user meets it: in its window, and from its folder.

#include "base/text.h"
#include "run/messages.h"
#include "run/progress_window.h"
#include "tests/support/faults.h"
#include "tests/support/program_fixture.h"
// Asio wants to come first.
#include <windows.h>

#include "platform/windows/programs.h"

namespace {

using namespace frmPrincipal;
using namespace modFunciones::literals;

constexpr int FirstControlId = 100;

/// In the program's code page.
std::string WindowText(HWND window) {
  wchar_t text[1024] = L"";
  // Not WM_GETTEXT: the program answers no messages while it waits for its server.
  InternalGetWindowText(window, text, std::size(text));
  char narrow[std::size(text)] = "";
  WideCharToMultiByte(1252, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);
  return narrow;
}

/// The program's visible window, or null. It is looked for anew at every call, so it may be that of
/// the process that took over.
HWND Window() {
  const HWND window = FindWindowW(L"KestraneWindow", nullptr);
  return IsWindowVisible(window) != FALSE ? window : nullptr;
}

HWND At(Control control) { return GetDlgItem(Window(), FirstControlId + control); }
std::string Text(Control control) { return WindowText(At(control)); }

bool WaitForText(Control control, std::string_view text) {
  return Eventually([&] { return Window() != nullptr && Text(control) == text; });
}

/// Whether the window answers messages within a few seconds.
bool Answers() {
  DWORD_PTR ignored = 0;
  return SendMessageTimeoutW(Window(), WM_NULL, 0, 0, SMTO_NORMAL, 5000, &ignored) != 0;
}

/// Waits for the final screen and returns its message.
std::string FinalMessage() {
  if (!WaitForText(btCancelar, "Finalizar")) return "(no final screen)";
  (void)Answers();  // the message is written behind the button's caption
  return Text(lblMensaje);
}

void Click(Control control) { PostMessageW(At(control), BM_CLICK, 0, 0); }

/// In the client area, as "left,top,width,height" in pixels.
std::string Place(Control control) {
  RECT area;
  GetWindowRect(At(control), &area);
  MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&area), 2);
  return std::to_string(area.left) + "," + std::to_string(area.top) + "," +
         std::to_string(area.right - area.left) + "," + std::to_string(area.bottom - area.top);
}

/// The colour on the screen where the first segment of a bar is.
COLORREF FirstSegment(Control picture) {
  POINT place = {4, 4};
  ClientToScreen(At(picture), &place);
  const std::shared_ptr<void> screen(
      GetDC(nullptr), [](void* context) { ReleaseDC(nullptr, static_cast<HDC>(context)); });
  return GetPixel(static_cast<HDC>(screen.get()), place.x, place.y);
}

/// The open message box that the window owns, or null.
HWND Box() {
  for (HWND box = nullptr; (box = FindWindowExW(nullptr, box, L"#32770", nullptr)) != nullptr;) {
    if (GetWindow(box, GW_OWNER) == Window() && IsWindowVisible(box) != FALSE) return box;
  }
  return nullptr;
}

/// Waits for a message box and returns "title|text".
std::string BoxText() {
  constexpr int MessageId = 0xFFFF;
  if (!Eventually([] { return Box() != nullptr; })) return "(no message box)";
  return WindowText(Box()) + "|" + WindowText(GetDlgItem(Box(), MessageId));
}

/// Waits for a message box, presses a button of it, such as IDYES, and waits until it is gone.
void AnswerBox(int button) {
  EXPECT_NE(BoxText(), "(no message box)");
  const HWND box = Box();
  PostMessageW(GetDlgItem(box, button), BM_CLICK, 0, 0);
  (void)Eventually([box] { return IsWindow(box) == FALSE; });
}

class ProgramWindow : public Program {
 protected:
  /// Leaves the final screen and returns its message.
  std::string Finish() {
    const std::string message = FinalMessage();
    Click(btCancelar);
    EXPECT_TRUE(Ends());
    return message;
  }

  /// A value below the current user's key for as long as the object lives; not in a user's own
  /// Windows.
  static auto RegistryValue(const char* key, const char* name, DWORD type, const void* data,
                            DWORD size) {
    if (!faults::OnWine()) return std::shared_ptr<void>();
    RegSetKeyValueA(HKEY_CURRENT_USER, key, name, type, data, size);
    return std::shared_ptr<void>(nullptr,
                                 [=](void*) { RegDeleteKeyValueA(HKEY_CURRENT_USER, key, name); });
  }

  const std::string body = std::string(9000, 'k');
};

TEST_F(ProgramWindow, KeepsToItsLayout) {
  const struct {
    DWORD dotsPerInch;
    Texts places;
    std::string finalPlace;
  } cases[] = {
      {96,
       {"12,16,37,41", "56,16,257,41", "12,64,303,13", "12,88,197,13", "212,88,101,13",
        "12,104,302,17", "12,132,197,13", "212,132,101,13", "12,148,302,17", "123,176,81,23"},
       "123,71,81,23"},
      {144,
       {"18,24,56,62", "84,24,386,62", "18,96,455,20", "18,132,296,20", "318,132,152,20",
        "18,156,453,26", "18,198,296,20", "318,198,152,20", "18,222,453,26", "185,264,122,35"},
       "185,106,122,35"},
  };
  ServeScript("MSG|" + std::string("¿Añadir «más»?"_ansi) + "|EXCLAMATION", "HGHG");
  for (const auto& [dotsPerInch, places, finalPlace] : cases) {
    if (dotsPerInch != 96 && !faults::OnWine()) continue;  // it is the system's own
    SCOPED_TRACE(dotsPerInch);
    const auto value = RegistryValue("Control Panel\\Desktop", "LogPixels", REG_DWORD, &dotsPerInch,
                                     sizeof dotsPerInch);
    Start({"none", "si", std::string("Libro «Año»"_ansi), sandbox.Path("no.ico")});
    EXPECT_EQ(BoxText(), "Libro «Año»|¿Añadir «más»?"_ansi);
    EXPECT_EQ(Text(lblMensaje), modPrincipal::InstallingStatus);
    RECT client;
    GetClientRect(Window(), &client);
    for (int control = picIco; control <= btCancelar; ++control) {
      EXPECT_EQ(Place(static_cast<Control>(control)), places[static_cast<std::size_t>(control)]);
    }
    EXPECT_NEAR(client.right, 4905.0 * dotsPerInch / 1440, 0.5);
    EXPECT_NEAR(client.bottom, 3135.0 * dotsPerInch / 1440, 0.5);
    AnswerBox(IDOK);
    EXPECT_EQ(FinalMessage(), modPrincipal::Success);
    EXPECT_EQ(WindowText(Window()), "Libro «Año»"_ansi);
    for (const Control control : {lblNombreAplicacion, lblFile, lblFileProgreso, picFile}) {
      EXPECT_FALSE(IsWindowVisible(At(control))) << control;
    }
    EXPECT_EQ(Place(btCancelar), finalPlace);
    RECT outer;
    GetWindowRect(Window(), &outer);
    EXPECT_EQ(outer.bottom - outer.top, 1950 * static_cast<LONG>(dotsPerInch) / 1440);
    (void)Finish();
  }
}

TEST_F(ProgramWindow, PaintsWhatItIsDoingBeforeItStandsStill) {
  server.Serve("/f", {.body = body});
  ServeScript("ADD|$AppPath\\f|" + server.Url("/f") + "\nSLEEP|60000\nDELETE|$AppPath\\kt-app.exe");
  const DWORD dotsPerInch = 120;
  const auto value = RegistryValue("Control Panel\\Desktop", "LogPixels", REG_DWORD, &dotsPerInch,
                                   sizeof dotsPerInch);
  Start();
  ASSERT_TRUE(WaitForText(lblMensaje, modPrincipal::InstallingStatus));
  EXPECT_TRUE(Eventually([] {
    return FirstSegment(picTotal) == GetSysColor(COLOR_HIGHLIGHT) &&
           FirstSegment(picFile) == GetSysColor(COLOR_WINDOW);
  }));
  EXPECT_TRUE(sandbox.Has("kt-app.exe")) << "later than the row that blocks";
}

TEST_F(ProgramWindow, IsCancelledOnlyWhenTheUserMeansIt) {
  server.Serve("/f", {.body = body, .stalls = true});
  ServeScript("ADD|$AppPath\\f|" + server.Url("/f"));
  Start({sandbox.Path("none"), "yes", "Libro"});
  ASSERT_TRUE(WaitForText(lblFileProgreso, "4 KB/9 KB"));
  EXPECT_NE(SendMessageW(Window(), WM_QUERYENDSESSION, 0, 0), 0) << "logging off";
  Click(btCancelar);
  PostMessageW(Window(), WM_SIZE, 0, 0);
  EXPECT_EQ(BoxText(), "Libro|¿Desea cancelar la instalación de la actualización?"_ansi);
  ShowWindow(Window(), SW_MINIMIZE);
  PostMessageW(Window(), WM_CLOSE, 0, 0);  // the question stands already
  AnswerBox(IDNO);
  server.Release();
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  RECT outer;
  GetWindowRect(Window(), &outer);
  EXPECT_LT(outer.bottom - outer.top, 3135 / 15) << "the final screen has its own height";
  PostMessageW(Window(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(Ends());
  EXPECT_EQ(Files(), (Tree{{"f", Shown(body)}}));
}

TEST_F(ProgramWindow, CannotBeCancelledWhileItInstalls) {
  ServeScript("EXECUTE|$AppPath\\kt-app.exe stay \"$AppPath\\up\"|WAIT|HIDE");
  Start();
  ASSERT_TRUE(Eventually([&] { return sandbox.Has("up"); }));
  Click(btCancelar);
  PostMessageW(Window(), WM_CLOSE, 0, 0);
  PostMessageW(Window(), WM_COMMAND, MAKEWPARAM(100 + btCancelar, BN_CLICKED), 0);
  EXPECT_TRUE(Answers()) << "while the program is waited for";
  EXPECT_EQ(SendMessageW(Window(), WM_QUERYENDSESSION, 0, 0), 0) << "nor by logging off";
  EXPECT_TRUE(Box() == nullptr && !HasEnded());
  sandbox.Write("up.end", "");
  EXPECT_EQ(Finish(), modPrincipal::Success);
}

TEST_F(ProgramWindow, CanBeCancelledWhenAServerSendsItInCircles) {
  if (!faults::OnWine()) GTEST_SKIP() << "Windows itself ends a circle of redirections";
  server.Serve("/KDvelomar2.txt",
               {.status = "302 Found", .headers = "Location: /KDvelomar2.txt\r\n", .asked = "*"});
  Start();
  ASSERT_TRUE(Eventually([&] { return server.Asked("/KDvelomar2.txt").size() > 1; }));
  Click(btCancelar);
  AnswerBox(IDYES);
  EXPECT_TRUE(Ends());
}

TEST_F(ProgramWindow, TakesTextsOfAnyLength) {
  const std::string text(90'000, 'x');
  ServeScript("NAME|" + text + "\nMSG|" + text + "|NOTHING\nDELETE|" + text + "\nEXECUTE|" + text +
                  "|WAIT|HIDE\nREGISTER|" + text + "\nKILL|" + text,
              "HG", "0.0.1|" + text);
  Start({text.substr(0, 9000), "yes", text.substr(0, 10'000), text.substr(0, 10'000)});
  AnswerBox(IDOK);
  EXPECT_EQ(Finish(), modPrincipal::Success);
}

TEST_F(ProgramWindow, LoadsNoLibraryFromItsOwnFolder) {
  const std::string component = ReadWhole(OwnFolder() / "component.dll");
  // What the system keeps a list of cannot be planted; these can.
  for (const std::string name :
       {"crypt32", "cryptbase", "dnsapi", "iphlpapi", "mpr", "netapi32", "propsys", "secur32",
        "url", "urlmon", "version", "wininet", "winhttp"}) {
    sandbox.Write(name + ".dll", component);
  }
  server.Serve("/f", {.body = "new"});
  ServeScript("ADD|$AppPath\\f|" + server.Url("/f"));
  EXPECT_TRUE(RunsSilently());
  EXPECT_FALSE(sandbox.Has("component.log"));

  // A component may need its neighbours, those of the program and those on the way of PATH.
  for (const std::string name : {"sub/c", "sub/kt-beside", "kt-own", "on path/kt-path"}) {
    sandbox.Write(name + ".dll", component);
  }
  const std::string formerPath = std::string("PATH=") + std::getenv("PATH");
  putenv((formerPath + ';' + sandbox.Path("on path")).c_str());
  ServeScript("REGISTER|$AppPath\\sub\\c.dll");
  EXPECT_TRUE(RunsSilently());
  putenv(formerPath.c_str());
  EXPECT_EQ(sandbox.Read("component.log"), "loaded\nloaded\nloaded\nloaded\nregistered\n");
}

TEST_F(ProgramWindow, StartsOnEverySystemFromXpOn) {
  if (!faults::OnWine()) GTEST_SKIP() << "only Wine can be told to be another version of Windows";
  ServeScript("DELETE|$AppPath\\x", "HGHG");
  for (const std::string version : {"winxp", "win10"}) {
    const auto value = RegistryValue("Software\\Wine\\AppDefaults\\Kestrane.exe", "Version", REG_SZ,
                                     version.c_str(), static_cast<DWORD>(version.size() + 1));
    EXPECT_TRUE(RunsSilently()) << version;
  }
}

TEST_F(Program, IsStartedThroughTheShellAsItIsWithoutIt) {
  const std::string app = sandbox.Path("kt-app.exe");
  const std::string rest = " append \"" + sandbox.Path("out") + "\" ";
  for (const auto& line : {app + rest + "1", '"' + app + '"' + rest + "\"2 3\"",
                           app.substr(0, app.size() - 4) + '\t' + rest + "4"}) {
    run = platform::windows_layer::StartThroughShell(line, nullptr, SW_HIDE);
    ASSERT_TRUE(run && Ends()) << line;
  }
  EXPECT_EQ(sandbox.Read("out"), "1\n2 3\n4\n");
  EXPECT_FALSE(platform::windows_layer::StartThroughShell("kt-missing.exe /x", nullptr, SW_HIDE));
}

TEST_F(Program, IsHardenedInItsHeader) {
  const char* image = kestrane.data();
  const auto* start = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
  const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS32*>(image + start->e_lfanew);
  const auto& optional = headers.OptionalHeader;
  EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_EQ(optional.DllCharacteristics, IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE |
                                             IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                                             IMAGE_DLLCHARACTERISTICS_TERMINAL_SERVER_AWARE);
  EXPECT_EQ(optional.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
  EXPECT_LE(optional.MajorSubsystemVersion, 5);
  EXPECT_NE(optional.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
}

}  // namespace
