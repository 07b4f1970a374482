// Whether many transfers in one process keep anything.

#include <gtest/gtest.h>

#include "platform/window.h"
#include "run/progress_window.h"
#include "run/run_state.h"
#include "tests/support/faults.h"
#include "tests/support/loopback_server.h"
#include "tests/support/sandbox.h"
#include "transfer/download.h"
#include "transfer/http_probe.h"

namespace {

using namespace modFunciones;

TEST(Leaks, AThousandTransfersKeepNothing) {
  constexpr int WarmUp = 100;
  constexpr int Count = 1000;
  constexpr long MemoryNoise = 600;  // kilobytes; a root handle a transfer comes to more
  LoopbackServer server;
  const Sandbox sandbox;
  server.Serve("/f", {.body = std::string(5000, 'k'), .asked = "*"});
  server.Serve("/missing", {.status = "404 Not Found", .asked = "*"});
  frmPrincipal::Load([] {});
  platform::window::Show();
  modPrincipal::TransferProgressOn = true;
  modPrincipal::FileBytes = modPrincipal::TotalBytes = 5000;

  faults::Resources before;
  for (int i = 0; i < WarmUp + Count; ++i) {
    server.WaitUntilQuiet();  // its connections belong to this process as well
    (void)server.TakeRequests();
    if (i == WarmUp) before = faults::ResourcesInUse();
    (void)IsAvailable(server.Url(i % 100 == 0 ? "/missing" : "/f"));
    modPrincipal::FileBytesDone = modPrincipal::TotalBytesDone = 0;
    const std::string target = sandbox.Path("f");
    ASSERT_EQ(DownloadUrl(server.Url("/f"), target, UserAgentText, PreconfiguredAccess, ""),
              target);
    (void)DownloadUrl("http://127.0.0.1:1/", "", UserAgentText, PreconfiguredAccess, "");
  }
  server.WaitUntilQuiet();
  const faults::Resources after = faults::ResourcesInUse();
  EXPECT_EQ(after.handles, before.handles);
  EXPECT_EQ(after.threads, before.threads);
  // Painting may hold some at either moment; one kept in every transfer would be hundreds.
  EXPECT_LT(after.graphicsObjects, before.graphicsObjects + Count / 6);
  EXPECT_LT(after.kilobytes, before.kilobytes + MemoryNoise);
}

}  // namespace
