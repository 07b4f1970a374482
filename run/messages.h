#pragma once

// Every text that the user can meet, in one place.

#include "base/text.h"

namespace modPrincipal {

using namespace modFunciones::literals;

inline constexpr auto ProgramName = "Kestrane"_ansi;

// Captions.
inline constexpr auto FileCaption = "Progreso de descarga del archivo actual:"_ansi;
inline constexpr auto TotalCaption = "Progreso de descarga total:"_ansi;
inline constexpr auto InstallCaption = "Progreso de instalación:"_ansi;
inline constexpr auto CancelCaption = "Cancelar"_ansi;
inline constexpr auto FinishCaption = "Finalizar"_ansi;

// The question of the cancel button.
inline constexpr auto CancelQuestion = "¿Desea cancelar la instalación de la actualización?"_ansi;

// Status of the run.
inline constexpr auto CheckingStatus =
    "Verificando la versión y descargando información necesaria para realizar la actualización..."_ansi;
inline constexpr auto FetchingUpdaterStatus =
    "Descargando nueva versión del programa de actualización..."_ansi;
inline constexpr auto DownloadingStatus =
    "Descargando los archivos necesarios para realizar la actualización del programa en su equipo..."_ansi;
inline constexpr auto InstallingStatus =
    "Actualizando la aplicación con los archivos descargados..."_ansi;

// Outcomes without failure.
inline constexpr auto NothingToDo =
    "No es necesario realizar ninguna actualización. La versión instalada es la más nueva."_ansi;
inline constexpr auto Success = "La actualización ha finalizado con éxito."_ansi;

// Failures of the command line.
inline constexpr auto MissingArguments = "No se han especificado los argumentos obligatorios."_ansi;
inline constexpr auto MissingVersion = "No se ha especificado la versión de la aplicación."_ansi;
inline constexpr auto MissingDiskPath =
    "No se ha especificado la ruta en disco de la aplicación."_ansi;
inline constexpr auto MissingUrl =
    "No se ha especificado la URL de información de actualización."_ansi;

// Failures of the run.
inline constexpr auto NotOnline =
    "No está conectado a Internet. No es posible realizar la actualización."_ansi;
inline constexpr auto InformationNotFound =
    "No se encuentra la información necesaria para realizar la actualización. Inténtelo de nuevo más tarde."_ansi;
inline constexpr auto ScriptNotUnderstood =
    "No es posible interpretar la información necesaria para realizar la actualización."_ansi;
inline constexpr auto FilesNotAvailable =
    "No es posible realizar la actualización. Parte o la totalidad de los archivos a descargar no están disponibles. Inténtelo de nuevo más tarde."_ansi;
inline constexpr auto UpdaterNotAvailable =
    "No es posible descargar el programa de actualización debido a que no se encuentra disponible. Inténtelo de nuevo más tarde."_ansi;
inline constexpr auto NoDiskSpace =
    "No es posible realizar la actualización. No hay suficiente espacio libre en el disco."_ansi;
inline constexpr auto WriteFailure =
    "Se ha producido un error al escribir un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación o no tenga espacio suficiente en disco."_ansi;
inline constexpr auto DeleteFailure =
    "Se ha producido un error al borrar un archivo. Posiblemente el archivo está siendo utilizado por otra aplicación."_ansi;

// Failures of an application that names its publisher's key.
inline constexpr auto NotSigned =
    "La información de la actualización no está firmada por el autor del programa."_ansi;
inline constexpr auto NotGenuine =
    "Un archivo descargado no es el que publicó el autor del programa. Inténtelo de nuevo más tarde."_ansi;

// Failure of the temporary copy: the text before, between and behind the two file names.
inline constexpr auto RenameAdvice =
    "Se ha producido un error grave. Para solucionarlo debe renombrar el fichero "_ansi;
inline constexpr auto RenameAdviceTarget = " con el nombre "_ansi;

}  // namespace modPrincipal
