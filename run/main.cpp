#include "platform/window.h"
#include "run/startup.h"

int main() {
  modPrincipal::Main();
  platform::window::RunEventLoop();
}
