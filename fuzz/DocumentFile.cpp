// A document file as it is. Few inputs get past its checksums: what damage does to a file is what this is about.

#include "DocumentFuzz.h"
#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CheckDocument(FuzzInput(data, size).Rest());
    return 0;
}
