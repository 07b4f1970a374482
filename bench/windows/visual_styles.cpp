// Makes the empty window one of a program with the system's visual styles.

#include <windows.h>

#include <commctrl.h>

namespace {

[[maybe_unused]] const bool loaded = (InitCommonControls(), true);

}  // namespace
