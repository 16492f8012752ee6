// Must not compile: the model knows no host.
#include "basguitool.h"
