#pragma once

// frmPrincipal, the one window of the program: its layout and the handlers of its button. The
// controls are changed through platform/window.h, under the names below.

namespace frmPrincipal {

/// The controls, in the order of the layout table.
enum Control : int {
  picIco,
  lblMensaje,
  lblNombreAplicacion,
  lblFile,
  lblFileProgreso,
  picFile,
  lblTotal,
  lblTotalProgreso,
  picTotal,
  btCancelar,
};

/// Creates the window, not yet visible. resized is called at every resize from the first showing
/// on.
void Load(void (*resized)());

/// "Cancelar" asks and, on Yes, ends the process; "Finalizar" launches the application's file
/// unless the run had an error, and ends the process.
void btCancelar_Click();

/// The title bar's X: like "Cancelar" while the run can be cancelled, nothing while it cannot, and
/// on the final screen the end of the process, without a launch.
void Form_Close();

}  // namespace frmPrincipal
