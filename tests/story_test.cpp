// Whole runs over a system that is all in memory, held against what the program does to it, event
// by event; and runs in which an operation fails or the process dies.

#include <gtest/gtest.h>

#include "run/messages.h"
#include "run/own_version.h"
#include "run/startup.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/scripted_system.h"
#include "tests/support/scripted_window.h"
#include "tests/support/update_story.h"

namespace {

using namespace modPrincipal;
using namespace scripted_system;

auto& window = scripted_window::state;
const Disk disk;
const Web web;

/// What a process does, from an event on, until its end or until somebody leaves its final screen.
std::string RunProgram(
    const std::string& from = "", const std::function<void()>& onYield = [] {},
    bool closesWindow = false) {
  ResetScript();
  ResetActionTable();
  scripted_window::Reset();
  window.onYield = onYield;
  state.operations.clear();
  try {
    Main();
    scripted_window::Tell("(leave)");
    (closesWindow ? window.handlers.closing : window.handlers.buttonClicked)();
  } catch (const ProcessEnded&) {
  }
  EXPECT_EQ(state.open, 0) << "handles";
  return scripted_window::Transcript(from);
}

std::string Message() { return modFunciones::ToUtf8(window.text[frmPrincipal::lblMensaje]); }

auto Events(const std::string& beginning) {
  return std::ranges::count_if(
      window.history, [&](const std::string& event) { return event.starts_with(beginning); });
}

/// What led to each message.
using Outcomes = std::map<std::string, std::vector<std::string>>;

std::string Told(const Outcomes& outcomes) {
  std::string all;
  for (const auto& [message, runs] : outcomes) {
    window.history = runs;
    all += '\n' + message + scripted_window::Transcript("");
  }
  return all;
}

Page Script(const std::string& lines, const std::string& head = "1.0.0|x") {
  return {head + "\nNAME|Libro|Mayor\nVERSION|<|3.0.0\n" + lines};
}

/// A system of its own for every test.
void Begin(const State& given = {}) { state = given; }

TEST(Story, OfAnUpdateWithEveryAction) {
  Begin();
  disk.Fill({{"a", "old"}, {"a.bak", "older"}, {"c", "old"}, {"e", "old"}});
  disk.Fill({{"My Tool.exe", ""}, {"r.dll", ""}});
  web.Serve(UpdateStory::Script, Script(R"(!MSG|Hola $AppPath|CRITICAL
!MSG|m|?
!add|$AppPath\a|http://s:8080/a
#DELETE|$AppPath\a
Update|$AppPath\new\b|https://s/b|x
UPDATE|$AppPath\c|http://s/c
DELETE|$AppPath\e
MSG|$winpath|INFORMATION
MSG|n|?
MSG|n|EXCLAMATION
MSG|n|NOTHING
EXECUTE|C:\Kt\My Tool.exe /x|WAIT|MIN
EXECUTE|$WinPath\t $WinSysPath|NOWAIT|?
EXECUTE|t|LATER|MIN
KILL|pad.EXE
REGISTER|$AppPath\r.dll
UNREGISTER|$AppPath\r.dll
SLEEP|3000
SLEEP|-1)"));
  state.web["http://s:8080/a"] = {std::string(1700, 'a')};
  state.web["https://s/b"] = {.body = std::string(900, 'b'), .secure = "HEAD GET"};
  web.Serve("/c", {""});
  state.processes = {{1, "own-pad.exe"}, {7, "NotePad.exe"}, {8, "padding.exe"}, {9, "PAD.EXE"}};
  state.polls = 1;
  state.commandLine += R"( "si" "Libro" "l.ico")";
  const auto disturb = [] {
    window.handlers.resized();
    if (!window.enabled) window.handlers.closing();
  };
  EXPECT_EQ(RunProgram("", disturb), R"(
window Kestrane 4905x3135; lblFile "Progreso de descarga del archivo actual:"
lblTotal "Progreso de descarga total:"; btCancelar "Cancelar"; caption Libro; icon l.ico
TakeSnapshot 2; Find @KestraneTmp.exe; show
lblMensaje "Verificando la versión y descargando información necesaria para realizar la actualización..."
yield; HEAD http://s/KDvelomar2.txt HTTP/1.0; yield; query 19; GET http://s/KDvelomar2.txt
yield in loop; read 457; yield in loop; read 0; box 16|Libro|Hola $AppPath; box 0|Libro|m
HEAD http://s:8080/a HTTP/1.0; yield; query 19; HEAD http://s:8080/a HTTP/1.0; yield; query 5
HEAD https://s/b HTTP/1.0; yield; query 19; HEAD https://s/b HTTP/1.0; yield; query 5
HEAD http://s/c HTTP/1.0; yield; query 19; HEAD http://s/c HTTP/1.0; yield; query 5
lblNombreAplicacion "Libro Mayor"
lblMensaje "Descargando los archivos necesarios para realizar la actualización del programa en su equipo..."
QueryDiskSpace C:/; FolderExists C:\; FolderExists @; GET http://s:8080/a; Find @a.tmp
Create @a.tmp; yield in loop; read 1000; lblFileProgreso "1 KB/2 KB"; lblTotalProgreso "1 KB/3 KB"
picFile 19; picTotal 13; Write @a.tmp 1000; yield in loop; read 700; lblFileProgreso "2 KB/2 KB"
lblTotalProgreso "2 KB/3 KB"; picFile 33; picTotal 22; Write @a.tmp 700; yield in loop; read 0
lblFileProgreso "2 KB/2 KB"; lblTotalProgreso "2 KB/3 KB"; picFile 33; picTotal 22; Close @a.tmp
lblFileProgreso ""; FolderExists C:\; FolderExists @; FolderExists @new\; CreateFolder @new\
GET https://s/b; Find @new\b.tmp; Create @new\b.tmp; yield in loop; read 900
lblFileProgreso "1 KB/1 KB"; lblTotalProgreso "3 KB/3 KB"; picFile 33; picTotal 33
Write @new\b.tmp 900; yield in loop; read 0; lblFileProgreso "1 KB/1 KB"
lblTotalProgreso "3 KB/3 KB"; picFile 33; picTotal 33; Close @new\b.tmp; lblFileProgreso ""
FolderExists C:\; FolderExists @; GET http://s/c; Find @c.tmp; Create @c.tmp; yield in loop; read 0
lblFileProgreso "0 KB/0 KB"; lblTotalProgreso "3 KB/3 KB"; picFile 33; picTotal 33; Close @c.tmp
lblFileProgreso "" x14; picFile 0; picTotal 0; lblTotalProgreso ""
lblMensaje "Actualizando la aplicación con los archivos descargados..."; btCancelar off; lblFile ""
lblTotal "Progreso de instalación:"; yield; Find @a; CanBeRenamed @a.tmp; Find @a.bak
Delete @a.bak; Rename @a to @a.bak; Rename @a.tmp to @a; picTotal 2; CanBeRenamed @new\b.tmp
Find @new\b; Rename @new\b.tmp to @new\b; picTotal 4; CanBeRenamed @c.tmp; Find @c; Delete @c
Rename @c.tmp to @c; picTotal 6; Find @e; Delete @e; picTotal 8; box 64|Libro|$winpath; picTotal 10
box 64|Libro|n; picTotal 12; box 48|Libro|n; picTotal 14; box 0|Libro|n; picTotal 17
IsFile @My Tool.exe /x; IsFile @My Tool.exe /x.exe; IsFile @My Tool.exe; Start "@My Tool.exe" /x 6
yield; Sleep 100; yield; Sleep 100; picTotal 19; IsFile C:\Win\t C:\Win\Sys
IsFile C:\Win\t C:\Win\Sys.exe; IsFile C:\Win\t; IsFile C:\Win\t.exe; Start C:\Win\t C:\Win\Sys 6
picTotal 21; picTotal 23; TakeSnapshot 2; OpenOwnToken 40; AdjustPrivilege 20 2; Open 2035711 7
Terminate 7 0; AdjustPrivilege 20 0; OpenOwnToken 40; AdjustPrivilege 20 2; Open 2035711 9
Terminate 9 0; AdjustPrivilege 20 0; picTotal 25; Find @r.dll; Load @r.dll; DllRegisterServer
hourglass; WaitForEnd 10000; arrow; FreeComponent; picTotal 27; Find @r.dll; Load @r.dll
DllUnregisterServer; hourglass; WaitForEnd 10000; arrow; FreeComponent; picTotal 29; Sleep 3000
picTotal 31; picTotal 33; lblNombreAplicacion hidden; lblFile hidden; lblFileProgreso hidden
picFile hidden; btCancelar on; btCancelar at 1060; btCancelar "Finalizar"; height 1950
lblMensaje "La actualización ha finalizado con éxito."; show; (leave); Open app.exe  in C:\ 1
EndProcess
)");
  EXPECT_EQ(disk.Tree(), (Tree{{"a", std::string(1700, 'a')},
                               {"a.bak", "old"},
                               {"c", ""},
                               {"new/b", std::string(900, 'b')},
                               {"My Tool.exe", ""},
                               {"r.dll", ""}}));
}

TEST(Story, OfAnUpdaterThatIsReplaced) {
  Begin();
  disk.Fill({{"Kestrane.exe", "old"}, {"KestraneTmp.exe", "left over"}});
  state.processes = {{1, "Kestrane.exe"}, {7, "kestranetmp.exe"}};
  state.commandLine += R"( "no" "Libro" "l.ico")";
  web.Serve(UpdateStory::Script, Script("KILL|x", "999.0.0|http://s/k"));
  web.Serve("/k", {std::string(1500, 'k')});
  EXPECT_EQ(RunProgram("HEAD http://s/k HTTP/1.0"), R"(
HEAD http://s/k HTTP/1.0; yield; query 19; HEAD http://s/k HTTP/1.0; yield; query 5
lblNombreAplicacion "Kestrane v999.0.0"; lblFileProgreso "0 KB/1 KB"; lblTotalProgreso "0 KB/1 KB"
yield; GET http://s/k; yield in loop; read 1000; lblFileProgreso "1 KB/1 KB"
lblTotalProgreso "1 KB/1 KB"; picFile 22; picTotal 22; yield in loop; read 500
lblFileProgreso "1 KB/1 KB"; lblTotalProgreso "1 KB/1 KB"; picFile 33; picTotal 33; yield in loop
read 0; lblFileProgreso "1 KB/1 KB"; lblTotalProgreso "1 KB/1 KB"; picFile 33; picTotal 33
TakeSnapshot 2; OpenOwnToken 40; AdjustPrivilege 20 2; Open 2035711 7; Terminate 7 0
AdjustPrivilege 20 0; Find @KestraneTmp.exe; Find @Kestrane.exe; OpenForReading @Kestrane.exe
Length @Kestrane.exe; Read @Kestrane.exe; Find @KestraneTmp.exe; Create @KestraneTmp.exe
Write @KestraneTmp.exe 1500; Close @KestraneTmp.exe
Open @KestraneTmp.exe "2.7.1" "C:\x" "http://s/KDvelomar2.txt" "app.exe" "NO" "Libro" "l.ico" in C:\ 1
EndProcess
)");
  // The next one gets every value as it was, with its quotes and backslashes.
  state.ownName = "KestraneTmp";
  state.commandLine = R"("2.7.1"\ "\"" \\ "a\\" \\"b \"" "\"X"\ "Kestrane" "\\""\)";
  EXPECT_EQ(RunProgram(R"(icon \"\)"), R"(
icon \"\; Find @KestraneTmp.exe; OpenForReading @KestraneTmp.exe; Length @KestraneTmp.exe
Read @KestraneTmp.exe; TakeSnapshot 2; Find @Kestrane.exe; Delete @Kestrane.exe; Find @Kestrane.exe
Create @Kestrane.exe; Write @Kestrane.exe 1500; Close @Kestrane.exe
Open @Kestrane.exe "2.7.1"\ "\"" \\ "a\\" \\"b \"" "\"X"\ "\\""\ in C:\ 1; EndProcess
)");
  EXPECT_EQ(disk.Tree()["Kestrane.exe"], std::string(1500, 'k'));
}

TEST(Story, EndsInTheRightText) {
  const std::string add = "ADD|C:\\Kt\\a|http://s/a";
  const std::string newer = "999.0.0|http://s/a";
  const Page adds = Script(add);
  const Page secure = Script("ADD|C:\\Kt\\a|https://s/a");
  const Page kills = Script("KILL|x");
  const Page replaces = Script("KILL|x", newer);
  const platform::files::DiskSpace eightKilobytes = {4, 512, 4};
  const struct {
    std::string what;
    State given;
    Page script = {"", "404"};
    Page page = {"new"};
  } cases[] = {
      {"no arguments", {.commandLine = ""}},
      {"two arguments", {.commandLine = "1 C:\\x"}},
      {"offline", {.offline = true}},
      {"no script", {}},
      {"bad script", {}, Script("KILL")},
      {"cut script", {}, {.body = kills.body, .announced = 99}},
      {"longer script", {}, {.body = kills.body, .announced = 9}},
      {"other versions", {.ownName = "KESTRANE"}, Script("VERSION|>|2.7.1\nKILL|x")},
      {"no newer updater in the copy", {.ownName = "Renamed"}},
      {"no URL", {}, Script(add + "\nADD|C:\\Kt\\b|")},
      {"nobody to end", {.processes = {{7, "pad.exe"}}}, Script("KILL|")},
      {"no such port", {}, Script("ADD|a|http://s:65616/a")},
      {"no host", {}, Script("ADD|a|http:///a:b")},
      {"2 GiB and a byte", {}, adds, {"", "200", "2147483648"}},
      {"no file", {}, Script(add + "\nKILL|x"), {"", "404"}},
      {"no space", {.space = eightKilobytes}, adds, {std::string(8193, 'a')}},
      {"just enough", {.space = eightKilobytes}, adds, {std::string(8192, 'a')}},
      {"128 TiB", {.space = {64, 512, UINT32_MAX}}, adds},
      {"2 GiB twice", {}, Script(add + '\n' + add), {"", "200", "2147483647"}},
      {"a file that breaks off", {}, adds, {.body = std::string(2000, 'a'), .breaksAt = 1000}},
      {"longer file", {}, adds, {.body = "longer", .announced = 5}},
      {"shorter file", {}, adds, {"short", "200", "6", -1}},
      {"longer than the probe told", {}, adds, {"longer", "200", "5", -1}},
      {"insecure head", {}, secure, {.body = "new", .secure = "GET"}},
      {"insecure body", {}, secure, {.body = "new", .secure = "HEAD"}},
      {"a file that stays", {.faultOn = "Delete e"}, Script("DELETE|C:\\Kt\\e*\nKILL|x")},
      {"this very version", {}, Script("KILL|x", modFunciones::OwnVersion() + "|http://s/a")},
      {"no updater", {}, Script("KILL", newer), {"", "404"}},
      {"the same updater", {}, replaces, {"old"}},
      {"its own program unreadable", {.faultOn = "Read Kestrane.exe"}, replaces, {"old"}},
      {"an updater of another length", {}, replaces, {"new", "200", "4"}},
      {"no memory for the script", {.noMemoryAt = "GET http://s/KDvelomar2.txt"}, kills},
      {"no memory at once", {.noMemoryAt = "Find C:\\Kt\\e"}, Script("!DELETE|C:\\Kt\\e")},
      {"no memory for the updater", {.noMemoryAt = "read 3"}, replaces},
      {"no memory in the phases", {.noMemoryAt = "QueryDiskSpace C:/"}, adds},
      {"no room for it", {.faultOn = "Write KestraneTmp.exe"}, replaces},
      {"no room in its place",
       {.ownName = "KestraneTmp",
        .files = {{disk.Path("KestraneTmp.exe"), "new"}},
        .faultOn = "Write Kestrane.exe"}},
  };
  Outcomes outcomes;  // with the numbers of requests and of operations on files
  for (const auto& [what, given, script, page] : cases) {
    Begin(given);
    disk.Fill({{"e", ""}, {"e2", ""}, {"Kestrane.exe", "old"}});
    web.Serve(UpdateStory::Script, script);
    state.web["http://s/a"] = state.web["https://s/a"] = page;
    (void)RunProgram();
    outcomes[Message()].push_back(what + ' ' + std::to_string(Events("HEAD") + Events("GET")) +
                                  '/' + std::to_string(state.operations.size()) +
                                  (Events("Open app.exe") == 1 ? " launches" : ""));
    EXPECT_EQ(Events("Terminate"), 0);
  }
  EXPECT_EQ(Told(outcomes), R"(
Descargando nueva versión del programa de actualización...
its own program unreadable 5/10

La actualización ha finalizado con éxito.
nobody to end 2/2 launches; just enough 5/18 launches; 128 TiB 5/10 launches
longer than the probe told 5/10 launches; this very version 2/2 launches
the same updater 5/7 launches; an updater of another length 5/7 launches
no memory for the updater 5/7 launches; no room for it 5/12 launches

No es necesario realizar ninguna actualización. La versión instalada es la más nueva.
other versions 2/1 launches

No es posible descargar el programa de actualización debido a que no se encuentra disponible. Inténtelo de nuevo más tarde.
no updater 3/1

No es posible interpretar la información necesaria para realizar la actualización.
bad script 2/1; cut script 2/1; longer script 2/1; no memory for the script 2/1
no memory at once 2/1

No es posible realizar la actualización. No hay suficiente espacio libre en el disco.
no space 4/2; 2 GiB twice 6/2

No es posible realizar la actualización. Parte o la totalidad de los archivos a descargar no están disponibles. Inténtelo de nuevo más tarde.
no such port 2/1; no host 2/1; 2 GiB and a byte 4/1; no file 3/1; insecure head 3/1

No está conectado a Internet. No es posible realizar la actualización.
offline 0/1

No se encuentra la información necesaria para realizar la actualización. Inténtelo de nuevo más tarde.
no script 1/1

No se han especificado los argumentos obligatorios.
no arguments 0/0; two arguments 0/0

Se ha producido un error al borrar un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación.
a file that stays 2/5

Se ha producido un error al escribir un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación o no tenga espacio suficiente en disco.
no URL 6/10; a file that breaks off 5/7; longer file 5/7; shorter file 5/7; insecure body 5/4
no memory in the phases 4/1

Se ha producido un error grave. Para solucionarlo debe renombrar el fichero KestraneTmp.exe con el nombre Kestrane.exe
no newer updater in the copy 0/1; no room in its place 0/11
)");
}

TEST(Story, EndsWhenItsUserWantsIt) {
  Begin();
  web.Serve(UpdateStory::Script, Script("DELETE|x"));
  const std::string question = "¿Desea cancelar la instalación de la actualización?";
  const auto cancel = [] {
    window.answer = 6;
    window.handlers.closing();
  };
  EXPECT_TRUE(RunProgram("", cancel).ends_with("box 4||" + question + "; EndProcess\n"));
  const auto hesitate = [] {
    window.answer = 7;
    window.handlers.closing();
  };
  (void)RunProgram("", hesitate);
  EXPECT_EQ(Message(), "La actualización ha finalizado con éxito.");
  const auto nothing = [] {};
  EXPECT_EQ(RunProgram("(leave)", nothing, true), "\n(leave); EndProcess\n");
  EXPECT_EQ(Events("picFile 0"), 0) << "nothing is downloaded";
  state.commandLine += " no";
  EXPECT_EQ(RunProgram("picTotal 33"), "\npicTotal 33; Open app.exe  in C:\\ 1; EndProcess\n");
}

TEST(Story, OfAnOldSystemAndAComponentThatHangs) {
  Begin({.processes = {{7, "pad.exe"}}, .systemVersion = -1, .workerHangs = true});
  disk.Fill({{"r.dll", ""}});
  web.Serve(UpdateStory::Script, Script("KILL|pad.exe\nREGISTER|C:\\Kt\\r.dll"));
  (void)RunProgram();
  EXPECT_EQ(Events("OpenOwnToken"), 0) << "there are no privileges";
  EXPECT_EQ(Events("Terminate") + Events("LeaveBehind"), 2);
  EXPECT_EQ(Events("FreeComponent"), 0);
}

TEST(Story, FaultAnywhereLosesNothingAndTheNextRunCompletesTheUpdate) {
  const UpdateStory story;
  Outcomes outcomes;
  std::size_t at = 0;
  for (bool met = true; met;) {
    SCOPED_TRACE("operation " + std::to_string(++at));
    Tree leftByDeath;
    for (const bool dies : {true, false}) {
      Begin({.faultAt = at, .dies = dies});
      story.Prepare(web, disk);
      (void)RunProgram();
      met = state.operations.size() >= at;
      const Tree left = disk.Tree();
      story.ExpectNothingLost(left);
      if (dies) leftByDeath = left;
      if (!dies && left != story.After()) {
        outcomes[Message()].push_back(state.operations[at - 1] +
                                      (left == leftByDeath ? "" : " goes on"));
      }
      state.faultAt = 0;
      (void)RunProgram();
      EXPECT_EQ(Message(), "La actualización ha finalizado con éxito.");
      EXPECT_EQ(disk.Tree(), story.AfterOnceMore(left));
    }
  }
  EXPECT_EQ(Told(outcomes), R"(
La actualización ha finalizado con éxito.
Find e goes on

No es posible realizar la actualización. No hay suficiente espacio libre en el disco.
QueryDiskSpace C:/

Se ha producido un error al borrar un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación.
Delete e goes on

Se ha producido un error al escribir un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación o no tenga espacio suficiente en disco.
Create a.tmp; Write a.tmp; Close a.tmp; CreateFolder new\; Create b.tmp; Write b.tmp; Close b.tmp
Create c.tmp; Write c.tmp; Close c.tmp; Create d.tmp; Write d.tmp; Close d.tmp; Find a
CanBeRenamed a.tmp; Find a.bak; Delete a.bak; Rename a; Rename a.tmp; Rename b.tmp
CanBeRenamed c.tmp; Find c; Delete c; Rename c.tmp; CanBeRenamed d.tmp; Rename d.tmp
)");
}

}  // namespace
