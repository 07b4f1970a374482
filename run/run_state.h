#pragma once

// The values of a run that several modules share. Module-level by design: they live as long as the
// process and belong to the one user-interface thread.

#include <cstdint>
#include <string>

namespace modPrincipal {

// Written by Main from the command line.
extern std::string AppVersion;         // installed version of the application
extern std::string AppDiskPath;        // the application's folder; only handed on at a relaunch
extern std::string UpdateInfoUrl;      // URL of the update script
extern std::string LaunchOnFinish;     // file opened when the run ended well; may be empty
extern std::string ShowSuccessScreen;  // upper-cased; "NO" skips the final screen of a success
extern std::string AppTitle;           // window caption and title of message boxes; may be empty
extern std::string AppIconFile;        // icon of the window; may be empty

/// Set by FailWithMessage, immediately before a failure goes to the final screen.
extern bool HadError;

/// Set by the first resize and by the final screen: no later resize starts the sequence.
extern bool SequenceStarted;

// Progress of the downloads, in bytes. Set by the sequence and the download phase; the download
// itself advances the two "done" counters.
extern bool TransferProgressOn;
extern std::int64_t TotalBytes;
extern std::int64_t TotalBytesDone;  // of the files already finished
extern std::int64_t FileBytes;
extern std::int64_t FileBytesDone;

/// Sets everything back to empty, false and 0.
void ResetRunState();

}  // namespace modPrincipal
