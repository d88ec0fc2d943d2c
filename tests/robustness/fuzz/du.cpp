#include "fuzz.h"

#include "system/output/tooloutput.h"
#include "system/run/process.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString output = byteText(inputBytes(data, size));
    const QString total = diskUsageTotal(output);
    require(!total.contains('\n') && !total.contains('\t'));
    require(total.isEmpty() || output.contains('\n'));
    require(output.contains(total));
    return 0;
}
