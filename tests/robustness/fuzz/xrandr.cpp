#include "fuzz.h"

#include "system/output/tooloutput.h"
#include "system/run/process.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString output = byteText(inputBytes(data, size));
    const QString name = connectedOutputName(output);
    require(!name.contains(' ') && !name.contains('\n'));
    require(name.isEmpty() || ('\n' + output).contains('\n' + name + ' '));
    require(name.isEmpty() || output.contains(" connected "));
    return 0;
}
