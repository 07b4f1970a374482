#include "run/final_screen.h"

#include "platform/window.h"
#include "run/messages.h"
#include "run/progress_window.h"
#include "run/run_state.h"

namespace modPrincipal {
namespace {

// Twips.
constexpr int FinalButtonTop = 1060;
constexpr int FinalWindowHeight = 1950;

}  // namespace

void FinishWithMessage(std::string_view message) {
  namespace window = platform::window;
  using namespace frmPrincipal;

  SequenceStarted = true;
  for (const Control control : {lblNombreAplicacion, lblFile, lblFileProgreso, picFile}) {
    window::SetVisible(control, false);
  }
  window::SetEnabled(btCancelar, true);
  window::SetTop(btCancelar, FinalButtonTop);
  window::SetText(btCancelar, FinishCaption);
  window::SetWindowHeight(FinalWindowHeight);
  window::SetText(lblMensaje, message);
  window::Show();
}

void FailWithMessage(std::string_view message) {
  HadError = true;
  FinishWithMessage(message);
}

}  // namespace modPrincipal
