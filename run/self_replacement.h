#pragma once

// The updater replaces itself in three processes: the running Kestrane.exe writes the newer program
// as KestraneTmp.exe, starts it and ends; KestraneTmp.exe copies itself over Kestrane.exe, starts
// that and ends; the new Kestrane.exe deletes the copy and goes on with the update.

#include <string>
#include <string_view>

namespace modPrincipal {

inline constexpr auto TempUpdaterName = "KestraneTmp.exe";
inline constexpr auto UpdaterName = "Kestrane.exe";

/// Path of a file in the own folder.
[[nodiscard]] std::string InOwnFolder(std::string_view fileName);

/// The arguments of this process as the command line of its successor, each in quotes, such that
/// SplitCommandLine gives them back. A value that is not set is left out.
[[nodiscard]] std::string RelaunchParameters();

/// Ends every temporary copy that still runs and deletes its file, if it can.
void RemoveTemporaryCopy();

/// First stage: writes the downloaded program as the temporary copy, hands over to it and ends the
/// process. Returns when there is nothing to write, it is this very program, or it cannot be
/// written.
void HandOverToNewUpdater(const std::string& program);

/// Second stage, run by the temporary copy: puts the file KestraneTmp.exe in the updater's place,
/// starts the updater and ends the process; when it cannot, the final screen tells the user what to
/// do.
void ReplaceUpdater();

}  // namespace modPrincipal
