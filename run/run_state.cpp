#include "run/run_state.h"

namespace modPrincipal {

std::string AppVersion;
std::string AppDiskPath;
std::string UpdateInfoUrl;
std::string LaunchOnFinish;
std::string ShowSuccessScreen;
std::string AppTitle;
std::string AppIconFile;

bool HadError = false;
bool SequenceStarted = false;

bool TransferProgressOn = false;
std::int64_t TotalBytes = 0;
std::int64_t TotalBytesDone = 0;
std::int64_t FileBytes = 0;
std::int64_t FileBytesDone = 0;

void ResetRunState() {
  for (auto* text : {&AppVersion, &AppDiskPath, &UpdateInfoUrl, &LaunchOnFinish, &ShowSuccessScreen,
                     &AppTitle, &AppIconFile}) {
    text->clear();
  }
  HadError = false;
  SequenceStarted = false;
  TransferProgressOn = false;
  TotalBytes = 0;
  TotalBytesDone = 0;
  FileBytes = 0;
  FileBytesDone = 0;
}

}  // namespace modPrincipal
