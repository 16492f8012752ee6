// Must not compile: the host knows no document.
#include "waveformdata.h"
