#include "run/progress_window.h"

#include <array>

#include "platform/system.h"
#include "platform/window.h"
#include "run/launch.h"
#include "run/messages.h"
#include "run/run_state.h"

namespace frmPrincipal {
namespace {

namespace window = platform::window;
using window::ControlKind;

constexpr int ClientWidth = 4905;
constexpr int ClientHeight = 3135;

// Left, top, width and height in twips.
constexpr std::array<window::ControlLayout, 10> Controls = {{
    /* picIco */ {ControlKind::ProgramIcon, 180, 240, 555, 615},
    /* lblMensaje */ {ControlKind::WrappingLabel, 840, 240, 3855, 615},
    /* lblNombreAplicacion */ {ControlKind::Label, 180, 960, 4545, 195},
    /* lblFile */ {ControlKind::Label, 180, 1320, 2955, 195},
    /* lblFileProgreso */ {ControlKind::RightAlignedLabel, 3180, 1320, 1515, 195},
    /* picFile */ {ControlKind::PictureBox, 180, 1560, 4530, 255},
    /* lblTotal */ {ControlKind::Label, 180, 1980, 2955, 195},
    /* lblTotalProgreso */ {ControlKind::RightAlignedLabel, 3180, 1980, 1515, 195},
    /* picTotal */ {ControlKind::PictureBox, 180, 2220, 4530, 255},
    /* btCancelar */ {ControlKind::Button, 1845, 2640, 1215, 350},
}};

constexpr std::uint32_t YesNoWithoutIcon = 4;  // MB_YESNO
constexpr int AnswerYes = 6;                   // IDYES

}  // namespace

void Load(void (*resized)()) {
  window::Create({modPrincipal::ProgramName, ClientWidth, ClientHeight, Controls},
                 {resized, btCancelar_Click, Form_Close});
}

void btCancelar_Click() {
  const std::string caption = window::Text(btCancelar);
  if (caption == modPrincipal::CancelCaption) {
    const int answer = window::ShowMessageBox(modPrincipal::CancelQuestion, YesNoWithoutIcon,
                                              modPrincipal::AppTitle);
    if (answer == AnswerYes) platform::system::EndProcess();
  } else if (caption == modPrincipal::FinishCaption) {
    if (!modPrincipal::LaunchOnFinish.empty() && !modPrincipal::HadError) {
      modFunciones::LaunchFile(modPrincipal::LaunchOnFinish, "");
    }
    platform::system::EndProcess();
  }
}

void Form_Close() {
  if (!window::IsEnabled(btCancelar)) return;
  if (window::Text(btCancelar) == modPrincipal::FinishCaption) platform::system::EndProcess();
  btCancelar_Click();
}

}  // namespace frmPrincipal
