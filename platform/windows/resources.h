#pragma once

// Numbers of the resources in kestrane.rc.
#define KESTRANE_ICON 1
