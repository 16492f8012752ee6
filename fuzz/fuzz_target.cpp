// One libFuzzer target; FUZZ_CHECK names the check it runs (fuzzchecks.h).
#include "fuzzchecks.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString fault = fuzzchecks::FUZZ_CHECK(data, size);
    if (!fault.isEmpty()) {
        std::fprintf(stderr, "fuzz check failed: %s\n", qPrintable(fault));
        std::abort();
    }
    return 0;
}
