// Must not compile: the host knows no tool.
#include "vokgui.h"
