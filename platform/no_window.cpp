// For programs without a window: there are no events.

#include "platform/window.h"

namespace platform::window {

void ProcessPendingEvents() {}
void ProcessPendingEventsInLoop() {}

}  // namespace platform::window
