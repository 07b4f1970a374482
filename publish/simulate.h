#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "publish/reading.h"
#include "publish/site.h"
#include "publish/trust.h"

namespace publish {

/// What the user of an installed version meets.
struct Outcome {
  std::string first;  // the installed versions from first to last; empty: one that is no version
  std::string last;
  Reading reading;          // its actions in the order in which they are carried out
  std::string finalScreen;  // its text, if nothing fails that nobody knows of beforehand
  std::int64_t bytes = 0;   // to download, where the server was asked
};

/// What an updater meets that is older than the one of the header.
struct Offer {
  std::string version;  // empty: the header is not understood, so that it offers none
  std::string url;
  std::string failure;     // the message, where it is known not to be to be had
  std::int32_t bytes = 0;  // where the server was asked
};

[[nodiscard]] Offer SimulateOffer(const Script& script, bool probe, const Trust& trust = {});

/// The version that the program makes of its first argument: a blank at the beginning is lost on
/// the command line.
[[nodiscard]] std::string AsReceived(const std::string& installed);

[[nodiscard]] Outcome Simulate(const Script& script, const std::string& installed, bool probe,
                               const Trust& trust = {});

/// Whether the update fails, or the server has other files than the upload folder.
[[nodiscard]] bool GoesWrong(const Outcome& outcome);

/// Notes where the server, which was asked, has another size than the upload folder.
void CompareWithSite(const Script& script, const Site& site, std::vector<Outcome>& outcomes);

/// One outcome for each range of versions that meet the same.
[[nodiscard]] std::vector<Outcome> SimulateAll(const Script& script, bool probe,
                                               const Trust& trust = {});

}  // namespace publish
