#pragma once

// The core's consumer context names a member "slots", which Qt defines as a keyword
// macro: the process value trace document's headers are read with the macro set aside.
#pragma push_macro("slots")
#undef slots
#include "xpvt/XpvtDoc.h"
#pragma pop_macro("slots")
