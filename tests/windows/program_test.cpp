// Whole runs of the program that users get, in its real window.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <random>

#include "platform/system.h"
#include "run/messages.h"
#include "tests/support/faults.h"
#include "tests/support/update_story.h"
#include "tests/windows/driver.h"

namespace {

using namespace driver;
using namespace frmPrincipal;
using namespace platform::text::literals;
using modPrincipal::ScriptNotUnderstood;
using Texts = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;

const std::string helper = ReadWhole(OwnFolder() / "helper.exe");
const std::string kestrane = ReadWhole(OwnFolder() / "../Kestrane.exe");

class Program : public testing::Test {
 protected:
  void SetUp() override { sandbox.Write("Kestrane.exe", kestrane); }

  /// Starts the program in the sandbox, with arguments from the fourth on.
  void Start(const Texts& further = {}) {
    Texts arguments = {"2.7.1", sandbox.Path("any"), server.Url("/info.txt")};
    arguments.insert(arguments.end(), further.begin(), further.end());
    run.reset();
    run = std::make_unique<ProgramRun>(sandbox.Path("Kestrane.exe"), arguments);
  }

  void ServeScript(const std::string& lines) {
    server.Serve("/info.txt", {.body = "1.0.3|http://updates.invalid/\r\nNAME|Libro|Mayor\r\n"
                                       "VERSION|<|3.0.0\r\n" +
                                       lines});
  }

  /// What stands beside the program.
  [[nodiscard]] Tree Files() const {
    Tree files = sandbox.Tree();
    EXPECT_EQ(files["Kestrane.exe"], Shown(kestrane));
    files.erase("Kestrane.exe");
    return files;
  }

  void Finish() {
    Click(btCancelar);
    EXPECT_TRUE(run->WaitForEnd());
  }

  LoopbackServer server;
  Sandbox sandbox;
  std::unique_ptr<ProgramRun> run;
};

TEST_F(Program, CarriesOutAnUpdateWithEveryAction) {
  const std::string log = "KESTRANE_TEST_LOG=" + sandbox.Path("component.log");
  putenv(const_cast<char*>(log.c_str()));
  const std::string component = ReadWhole(OwnFolder() / "component.dll");
  sandbox.Fill({{"kt-ledger.exe", "1"}, {"oldprint.dll", "x"}, {"old.txt", "x"}});
  sandbox.Fill({{"reports.dll", "old"}, {"reports.dll.bak", "older"}});
  server.Serve("/ledger", {.body = helper});
  server.Serve("/reports", {.body = component});
  server.Serve("/help", {.body = "ayuda"});
  ServeScript("#every action once\n!DELETE|" + sandbox.Path("oldprint.dll") +
              "\nUPDATE|$AppPath\\kt-ledger.exe|" + server.Url("/ledger") +
              "\nADD|$AppPath\\reports.dll|" + server.Url("/reports") +
              "\nADD|$AppPath\\help\\es es\\help.txt|" + server.Url("/help") +
              "\nDELETE|$AppPath\\old.txt"
              "\nMSG|" +
              std::string("¿Añadir «más»?"_ansi) +
              "|EXCLAMATION"
              "\nEXECUTE|$AppPath\\kt-ledger.exe append \"$AppPath\\out\" migrated|WAIT|MIN"
              "\nEXECUTE|$AppPath\\kt-ledger.exe stay \"$AppPath\\stay\"|NOWAIT|HIDE"
              "\nSLEEP|3000\nKILL|KT-LEDGER.EXE"
              "\nREGISTER|$AppPath\\reports.dll\nUNREGISTER|$AppPath\\reports.dll\nEND\nMSG\n");
  Start({sandbox.Path("kt-ledger.exe"), "si", std::string("Libro «Año»"_ansi)});

  EXPECT_EQ(BoxText(), "Libro «Año»|¿Añadir «más»?"_ansi);
  EXPECT_EQ(Text(lblMensaje), modPrincipal::InstallingStatus);
  EXPECT_EQ(Text(lblNombreAplicacion), "Libro Mayor");
  EXPECT_EQ(Text(lblTotal), modPrincipal::InstallCaption);
  EXPECT_EQ(Text(lblFile) + Text(lblFileProgreso) + Text(lblTotalProgreso), "");
  EXPECT_FALSE(IsWindowEnabled(At(btCancelar)));
  AnswerBox(IDOK);
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  EXPECT_EQ(Caption(), "Libro «Año»"_ansi);
  Finish();

  EXPECT_TRUE(Eventually([&] { return sandbox.Has("kt-ledger.exe.log"); }));
  EXPECT_EQ(Files(), (Tree{{"kt-ledger.exe", Shown(helper)},
                           {"reports.dll", Shown(component)},
                           {"reports.dll.bak", "old"},
                           {"help/es es/help.txt", "ayuda"},
                           {"out", "migrated\n"},
                           {"stay", "up\n"},
                           {"component.log", "registered\nunregistered\n"},
                           {"kt-ledger.exe.log", "launched\n"}}));
  EXPECT_EQ(server.TakeRequests(),
            (Texts{"HEAD /info.txt HTTP/1.0", "GET /info.txt HTTP/1.1", "HEAD /ledger HTTP/1.0",
                   "HEAD /ledger HTTP/1.0", "HEAD /reports HTTP/1.0", "HEAD /reports HTTP/1.0",
                   "HEAD /help HTTP/1.0", "HEAD /help HTTP/1.0", "GET /ledger HTTP/1.1",
                   "GET /reports HTTP/1.1", "GET /help HTTP/1.1"}));
}

TEST_F(Program, EndsEveryRunOnTheScreenThatTellsItsOutcome) {
  server.Serve("/f", {.body = "new"});
  server.Serve("/cut", {.body = "longer than this", .cutAt = 6});
  const std::string add = "ADD|$AppPath\\a.exe|" + server.Url("/");
  const struct {
    std::string_view message;
    std::string lines;
    Tree left;
    bool launches = false;
  } cases[] = {
      {ScriptNotUnderstood, "MSG|x\n", {{"a.exe", "old"}}},
      {modPrincipal::FilesNotAvailable, add + "missing\n", {{"a.exe", "old"}}},
      {modPrincipal::WriteFailure,
       add + "f\n" + add + "cut\n",
       {{"a.exe", "old"}, {"a.exe.tmp", "longer"}}},
      {modPrincipal::WriteFailure,
       "DELETE|$AppPath\\a.exe\nUPDATE|$AppPath\\locked|" + server.Url("/f") +
           "\nDELETE|$AppPath\\x",
       {{"locked.tmp", "new"}}},
      {modPrincipal::DeleteFailure, "DELETE|$AppPath\\locked\nDELETE|$AppPath\\a.exe", {}},
      {modPrincipal::NothingToDo, "\x20\nKILL|x\n" + add + "f\n", {{"a.exe", "old"}}, true},
      {modPrincipal::Success, add + "f\n", {{"a.exe", "new"}, {"a.exe.bak", "old"}}, true},
  };
  for (const auto& [message, lines, left, launches] : cases) {
    SCOPED_TRACE(lines.substr(0, 60));
    sandbox.Fill({{"a.exe", "old"}, {"locked", "locked"}, {"kt-app.exe", helper}});
    const auto lock = faults::Lock(sandbox.Path("locked"));
    ServeScript(lines);
    Start({sandbox.Path("kt-app.exe"), "yes"});
    EXPECT_EQ(FinalMessage(), message);
    EXPECT_EQ(Caption(), "Kestrane");
    EXPECT_TRUE(IsWindowEnabled(At(btCancelar)));
    Finish();
    if (launches) {
      EXPECT_TRUE(Eventually([&] { return sandbox.Has("kt-app.exe.log"); }));
    }
    Tree files = Files();
    EXPECT_EQ(files.erase("locked"), 1U);
    EXPECT_EQ(files.erase("kt-app.exe"), 1U);
    EXPECT_EQ(files.erase("kt-app.exe.log"), launches ? 1U : 0U);
    EXPECT_EQ(files, left);
    for (const auto& [name, content] : sandbox.Tree()) {
      if (name != "Kestrane.exe" && name != "locked") std::filesystem::remove(sandbox.Path(name));
    }
  }

  server.Serve("/info.txt", {.status = "500 Broken"});
  Start();
  EXPECT_EQ(FinalMessage(), modPrincipal::InformationNotFound);
  server.Serve("/info.txt", {.body = "9.0.0|" + server.Url("/missing") + "\nA\nB\nC"});
  Start();
  EXPECT_EQ(FinalMessage(), modPrincipal::UpdaterNotAvailable);
}

TEST_F(Program, TellsWhatIsMissingOnItsCommandLine) {
  run = std::make_unique<ProgramRun>(sandbox.Path("Kestrane.exe"), Texts{"2.7.1", "C:\\Ledger"});
  EXPECT_EQ(FinalMessage(), modPrincipal::MissingArguments);
  Finish();

  sandbox.Write("Renamed.exe", kestrane);  // a copy without the file that it would put in place
  run = std::make_unique<ProgramRun>(sandbox.Path("Renamed.exe"),
                                     Texts{"2.7.1", "C:\\Ledger", "url"});
  EXPECT_EQ(FinalMessage(),
            "Se ha producido un error grave. Para solucionarlo debe renombrar el "
            "fichero KestraneTmp.exe con el nombre Kestrane.exe");
  Finish();
}

TEST_F(Program, EndsSilentlyWhenItIsToldTo) {
  sandbox.Write("kt-app.exe", helper);
  ServeScript("DELETE|$AppPath\\x");
  Start({sandbox.Path("kt-app.exe"), "no"});
  EXPECT_TRUE(run->WaitForEnd());
  EXPECT_TRUE(Eventually([&] { return sandbox.Has("kt-app.exe.log"); }));
}

TEST_F(Program, TurnsOneFolderIntoAnotherWithAnUpdateThatWasMade) {
  const Tree oldFiles = {{"app.exe", "1"}, {"same", "="}, {"b c/gone", "1"}, {"data", "1"}};
  const Tree newFiles = {
      {"app.exe", "2"}, {"same", "="}, {"b c/\xF1 #%.txt", "2"}, {"data", ""}, {"d/e/f", "2"}};
  for (const auto& [name, content] : oldFiles) sandbox.Write("old/" + name, content);
  for (const auto& [name, content] : newFiles) sandbox.Write("new/" + name, content);
  const ProgramRun made((OwnFolder() / "../kestrane-publish.exe").string(),
                        {"make", sandbox.Path("old"), sandbox.Path("new"), "--site",
                         sandbox.Path("site"), "--url", server.Url(""), "--from", "2.7.1", "--to",
                         "3.0.0", "--updater", server.Url("/Kestrane.exe"), "1.0.3"});
  ASSERT_TRUE(made.WaitForEnd());
  server.Serve("/info.txt", {.body = sandbox.Read("site/update.txt")});
  server.Serve("/3.0.0/b%20c/%C3%B1%20%23%25.txt", {.body = "2"});
  for (const std::string name : {"app.exe", "data", "d/e/f"}) {
    server.Serve("/3.0.0/" + name, {.body = sandbox.Read("site/3.0.0/" + name)});
  }
  for (const char* folder : {"new", "site"}) std::filesystem::remove_all(sandbox.Folder(folder));
  sandbox.Write("old/Kestrane.exe", kestrane);
  run = std::make_unique<ProgramRun>(sandbox.Path("old/Kestrane.exe"),
                                     Texts{"2.7.1", sandbox.Path("old"), server.Url("/info.txt")});
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  Finish();
  Tree expected = {{"Kestrane.exe", Shown(kestrane)}, {"old/Kestrane.exe", Shown(kestrane)}};
  for (const auto& [name, content] : newFiles) expected["old/" + name] = content;
  expected["old/b c/\xC3\xB1 #%.txt"] = "2";  // names come in UTF-8
  expected.erase("old/b c/\xF1 #%.txt");
  EXPECT_EQ(sandbox.Tree(), expected);
}

TEST_F(Program, IsCancelledOnlyWhenTheUserMeansIt) {
  const std::string body(9000, 'k');
  server.Serve("/f", {.body = body, .stalls = true});
  ServeScript("ADD|$AppPath\\f|" + server.Url("/f"));
  Start({sandbox.Path("kt-app.exe"), "yes", "Libro"});
  ASSERT_TRUE(WaitForText(lblFileProgreso, "3 KB/9 KB"));
  EXPECT_EQ(Text(lblMensaje), modPrincipal::DownloadingStatus);
  EXPECT_EQ(Text(lblTotalProgreso), "3 KB/9 KB");
  EXPECT_EQ(Text(lblFile), modPrincipal::FileCaption);
  EXPECT_EQ(Text(lblTotal), modPrincipal::TotalCaption);
  Click(btCancelar);
  PostMessageW(Window(), WM_SIZE, 0, 0);
  EXPECT_EQ(BoxText(), "Libro|¿Desea cancelar la instalación de la actualización?"_ansi);
  ShowWindow(Window(), SW_MINIMIZE);
  PostMessageW(Window(), WM_CLOSE, 0, 0);  // the question stands already
  AnswerBox(IDNO);
  server.Release();
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  EXPECT_EQ(server.TakeRequests().size(), 5U) << "nothing was started twice";
  RECT outer;
  GetWindowRect(Window(), &outer);
  EXPECT_LT(outer.bottom - outer.top, 3135 / 15) << "the final screen has its own height";
  PostMessageW(Window(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(run->WaitForEnd());
  EXPECT_EQ(Files(), (Tree{{"f", Shown(body)}}));
}

TEST_F(Program, LeavesWhatIsThereWhenItIsCancelled) {
  server.Serve("/f", {.body = std::string(9000, 'k'), .stalls = true});
  ServeScript("ADD|$AppPath\\a|" + server.Url("/f"));
  Start();
  ASSERT_TRUE(WaitForText(lblFileProgreso, "3 KB/9 KB"));
  PostMessageW(Window(), WM_CLOSE, 0, 0);
  EXPECT_EQ(BoxText(), "|¿Desea cancelar la instalación de la actualización?"_ansi);
  AnswerBox(IDYES);
  EXPECT_TRUE(run->WaitForEnd());
  EXPECT_EQ(Files(), (Tree{{"a.tmp", Shown(std::string(3072, 'k'))}}));
}

TEST_F(Program, CannotBeCancelledWhileItInstalls) {
  sandbox.Write("kt-slow.exe", helper);
  ServeScript("EXECUTE|$AppPath\\kt-slow.exe stay \"$AppPath\\up\"|WAIT|HIDE");
  Start();
  ASSERT_TRUE(Eventually([&] { return sandbox.Has("up"); }));
  Click(btCancelar);
  PostMessageW(Window(), WM_CLOSE, 0, 0);
  PostMessageW(Window(), WM_COMMAND, MAKEWPARAM(100 + btCancelar, BN_CLICKED), 0);
  DWORD_PTR ignored = 0;
  EXPECT_NE(SendMessageTimeoutW(Window(), WM_NULL, 0, 0, SMTO_NORMAL, 5000, &ignored), 0)
      << "the window answers while the program is waited for";
  EXPECT_EQ(Box(), nullptr);
  EXPECT_FALSE(run->HasEnded());
  sandbox.Write("up.end", "");
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  Finish();
}

TEST_F(Program, ReplacesItselfThroughItsTemporaryCopy) {
  const std::string newer = ReadWhole(OwnFolder() / "newer/Kestrane.exe");
  ASSERT_FALSE(newer.empty());
  ASSERT_NE(newer, kestrane);
  sandbox.Write("KestraneTmp.exe", "left over");
  sandbox.Write("kt-app.exe", helper);
  server.Serve("/updater", {.body = newer});
  server.Serve("/KDvelomar2.txt", {.body = "1.0.4|" + server.Url("/updater") +
                                           "\nNAME|x\nVERSION|=|2.7.1\nMSG|Listo|NOTHING"});
  run = std::make_unique<ProgramRun>(
      sandbox.Path("Kestrane.exe"),
      Texts{"2.7.1", sandbox.Path("a b"), server.Url("/KDvelomar.txt"), sandbox.Path("kt-app.exe"),
            "no", std::string("Título"_ansi), sandbox.Path("no.ico")});
  EXPECT_TRUE(run->WaitForEnd());
  EXPECT_EQ(BoxText(), "Título|Listo"_ansi) << "the newer program carries out the update";
  EXPECT_EQ(Caption(), "Título"_ansi);
  EXPECT_EQ(sandbox.Tree(), (Tree{{"Kestrane.exe", Shown(newer)}, {"kt-app.exe", Shown(helper)}}));
  const HWND window = Window();
  AnswerBox(IDOK);
  EXPECT_TRUE(Eventually([&] { return sandbox.Has("kt-app.exe.log"); }));
  EXPECT_TRUE(Eventually([&] { return IsWindow(window) == FALSE; }));
  EXPECT_EQ(server.TakeRequests(),
            (Texts{"HEAD /KDvelomar2.txt HTTP/1.0", "GET /KDvelomar2.txt HTTP/1.1",
                   "HEAD /updater HTTP/1.0", "HEAD /updater HTTP/1.0", "GET /updater HTTP/1.1",
                   "HEAD /KDvelomar2.txt HTTP/1.0", "GET /KDvelomar2.txt HTTP/1.1"}));
}

TEST_F(Program, LosesNothingWhenItIsKilledAtAnyMoment) {
  const char* wanted = std::getenv("KESTRANE_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 12;
  const unsigned seed = std::random_device()();
  std::printf("%d kills, seed %u\n", kills, seed);
  std::mt19937 random(seed);
  const UpdateStory story(300'000);
  DWORD duration = 0;  // milliseconds, of a run that nobody disturbs
  for (int i = 0; i <= kills; ++i) {
    SCOPED_TRACE(i);
    const Sandbox files;
    story.Prepare(server, files);
    const DWORD start = GetTickCount();
    Start({"none", "no"});
    if (i == 0) {
      ASSERT_TRUE(run->WaitForEnd());
      duration = GetTickCount() - start;
      EXPECT_EQ(files.Tree(), story.After());
      continue;
    }
    Sleep(random() % duration);
    run.reset();
    const Tree left = files.Tree();
    story.ExpectNothingLost(left);
    Start({"none", "no"});
    ASSERT_TRUE(run->WaitForEnd());
    EXPECT_EQ(files.Tree(), story.AfterOnceMore(left));
  }
}

TEST_F(Program, LoadsNoLibraryFromItsOwnFolder) {
  const std::string log = "KESTRANE_LOAD_LOG=" + sandbox.Path("load.log");
  putenv(const_cast<char*>(log.c_str()));
  const std::string component = ReadWhole(OwnFolder() / "component.dll");
  // What the system keeps a list of cannot be planted; these can.
  for (const char* name :
       {"crypt32", "cryptbase", "dnsapi", "iphlpapi", "mpr", "netapi32", "propsys", "secur32",
        "url", "urlmon", "version", "wininet", "winhttp"}) {
    sandbox.Write(std::string(name) + ".dll", component);
  }
  server.Serve("/f", {.body = "new"});
  ServeScript("ADD|$AppPath\\f|" + server.Url("/f"));
  Start();
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  Finish();
  EXPECT_FALSE(sandbox.Has("load.log"));

  ServeScript("REGISTER|$AppPath\\url.dll");
  Start();
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  Finish();
  EXPECT_EQ(sandbox.Read("load.log"), "loaded\n") << "the component itself is loaded";
  putenv(const_cast<char*>("KESTRANE_LOAD_LOG="));
}

TEST_F(Program, IsHardenedInItsHeader) {
  const char* image = kestrane.data();
  const auto* start = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
  const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS32*>(image + start->e_lfanew);
  EXPECT_EQ(headers.Signature, IMAGE_NT_SIGNATURE);
  EXPECT_EQ(headers.FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0);
  EXPECT_EQ(headers.OptionalHeader.DllCharacteristics,
            IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE | IMAGE_DLLCHARACTERISTICS_NX_COMPAT |
                IMAGE_DLLCHARACTERISTICS_TERMINAL_SERVER_AWARE);
  EXPECT_EQ(headers.OptionalHeader.Subsystem, IMAGE_SUBSYSTEM_WINDOWS_GUI);
  EXPECT_LE(headers.OptionalHeader.MajorSubsystemVersion, 5);
  EXPECT_NE(headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_BASERELOC].Size, 0U);
}

TEST_F(Program, TakesTextsOfAnyLength) {
  const std::string text(30'000, 'x');
  const std::string longer = text + text + text;
  server.Serve("/info.txt",
               {.body = "1.0.3|" + longer + "\nNAME|" + longer + "\nVERSION|<|3.0.0\nMSG|" +
                        longer + "|NOTHING\nDELETE|" + longer + "\nEXECUTE|" + longer +
                        "|WAIT|HIDE\nREGISTER|" + longer + "\nKILL|" + longer});
  Start({text.substr(0, 9000), "yes", text.substr(0, 10'000), text.substr(0, 10'000)});
  ASSERT_TRUE(Eventually([] { return Box() != nullptr; }));
  AnswerBox(IDOK);
  EXPECT_EQ(FinalMessage(), modPrincipal::Success);
  Finish();
}

TEST_F(Program, CanBeCancelledWhenAServerSendsItInCircles) {
  if (!faults::OnWine()) GTEST_SKIP() << "Windows itself ends a circle of redirections";
  server.Serve("/info.txt", {.status = "302 Found", .headers = "Location: /info.txt\r\n"});
  Start();
  ASSERT_TRUE(Eventually([&] { return server.TakeRequests().size() > 1; }));
  Click(btCancelar);
  ASSERT_TRUE(Eventually([] { return Box() != nullptr; }));
  AnswerBox(IDYES);
  EXPECT_TRUE(run->WaitForEnd());
}

TEST_F(Program, KeepsToItsLayout) {
  const struct {
    DWORD dotsPerInch;
    Texts places;
  } cases[] = {
      {96,
       {"12,16,37,41", "56,16,257,41", "12,64,303,13", "12,88,197,13", "212,88,101,13",
        "12,104,302,17", "12,132,197,13", "212,132,101,13", "12,148,302,17", "123,176,81,23"}},
      {144,
       {"18,24,56,62", "84,24,386,62", "18,96,455,20", "18,132,296,20", "318,132,152,20",
        "18,156,453,26", "18,198,296,20", "318,198,152,20", "18,222,453,26", "185,264,122,35"}},
  };
  sandbox.Write("kt-slow.exe", helper);
  ServeScript("MSG|x|NOTHING");
  for (const auto& [dotsPerInch, places] : cases) {
    SCOPED_TRACE(dotsPerInch);
    RegSetKeyValueA(HKEY_CURRENT_USER, "Control Panel\\Desktop", "LogPixels", REG_DWORD,
                    &dotsPerInch, sizeof dotsPerInch);
    Start();
    EXPECT_EQ(BoxText(), "|x");
    RECT client;
    GetClientRect(Window(), &client);
    for (int control = picIco; control <= btCancelar; ++control) {
      EXPECT_EQ(Place(static_cast<Control>(control)), places[static_cast<std::size_t>(control)]);
    }
    EXPECT_NEAR(client.right, 4905.0 * dotsPerInch / 1440, 0.5);
    EXPECT_NEAR(client.bottom, 3135.0 * dotsPerInch / 1440, 0.5);
    AnswerBox(IDOK);
    (void)FinalMessage();
    for (const Control control : {lblNombreAplicacion, lblFile, lblFileProgreso, picFile}) {
      EXPECT_FALSE(IsWindowVisible(At(control))) << control;
    }
    EXPECT_EQ(Place(btCancelar), dotsPerInch == 96 ? "123,71,81,23" : "185,106,122,35");
    RECT outer;
    GetWindowRect(Window(), &outer);
    EXPECT_EQ(outer.bottom - outer.top, 1950 * static_cast<LONG>(dotsPerInch) / 1440);
    Finish();
  }
  RegDeleteKeyValueA(HKEY_CURRENT_USER, "Control Panel\\Desktop", "LogPixels");
}

TEST_F(Program, StartsOnEverySystemFromXpOn) {
  if (!faults::OnWine()) {
    GTEST_SKIP() << "only Wine can be told to be another version of Windows";
  }
  constexpr const char* Key = "Software\\Wine\\AppDefaults\\Kestrane.exe";
  ServeScript("DELETE|$AppPath\\x");
  for (const std::string version : {"winxp", "win7", "win10"}) {
    RegSetKeyValueA(HKEY_CURRENT_USER, Key, "Version", REG_SZ, version.c_str(),
                    static_cast<DWORD>(version.size() + 1));
    Start();
    EXPECT_EQ(FinalMessage(), modPrincipal::Success) << version;
    Finish();
  }
  RegDeleteKeyValueA(HKEY_CURRENT_USER, Key, "Version");
}

}  // namespace
