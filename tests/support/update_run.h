#pragma once

// A whole update in the process of the test, over the scripted window.

#include <string>

#include "run/progress_window.h"
#include "run/run_state.h"
#include "run/update_sequence.h"
#include "script/action_table.h"
#include "script/parser.h"
#include "tests/support/scripted_window.h"

/// Brings an installed version up to date with the script of a URL; the final screen's message.
inline std::string RunUpdate(const std::string& installed, const std::string& url) {
  modPrincipal::ResetRunState();
  modPrincipal::ResetActionTable();
  modPrincipal::ResetScript();
  scripted_window::Reset();
  modPrincipal::AppVersion = installed;
  modPrincipal::UpdateInfoUrl = url;
  modPrincipal::CheckForUpdate();
  return scripted_window::state.text[frmPrincipal::lblMensaje];
}
