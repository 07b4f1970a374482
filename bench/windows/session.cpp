// Keeps a session of the system up, desktop included, until it is ended.

#include <windows.h>

int main() {
  GetDC(nullptr);  // begins the desktop
  Sleep(INFINITE);
}
