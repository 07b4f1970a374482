#include "run/own_version.h"

#define TEXT_OF_TOKENS(tokens) #tokens
#define TEXT_OF(macro) TEXT_OF_TOKENS(macro)

namespace modFunciones {

// The build states the version once and hands it to this file and to the version record.
std::string OwnVersion() { return TEXT_OF(KESTRANE_VERSION); }

}  // namespace modFunciones
