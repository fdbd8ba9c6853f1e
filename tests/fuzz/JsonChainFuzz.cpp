// Any JSON project of any version is migrated to the newest version, or is refused.

#include "Fuzz.h"
#include "Mutate.h"

FUZZ_MUTATE_BY(Fuzz::mutateJson)

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("JsonChainFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::migrate(Fuzz::bytesOf(data, size));
    return 0;
}
