#include "fuzz.h"

#include "system/output/tooloutput.h"
#include "system/run/process.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString output = byteText(inputBytes(data, size));
    const QString name = touchDeviceName(output);
    require(name.isEmpty() != output.contains("PenMount"));
    require(output.contains(name) && !name.contains('\n'));
    const TouchState state = firstButtonState(output);
    require((state == TouchState::Unknown) != output.contains("button[1]="));
    return 0;
}
