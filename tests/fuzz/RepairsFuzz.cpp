// Any bytes are migrated with repairs to a document that can be read again, or refused.

#include "Fuzz.h"
#include "Mutate.h"

FUZZ_MUTATE_BY(Fuzz::mutateProject)

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("RepairsFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::migrateWithRepairs(Fuzz::bytesOf(data, size));
    return 0;
}
