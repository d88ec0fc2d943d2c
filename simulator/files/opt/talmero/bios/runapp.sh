#!/bin/sh
# Runs the HMI runtime and ends when the runtime ends.
if [ -p /run/panel/tools.pipe ]; then
    line="[tool] /bin/sh /opt/talmero/bios/runapp.sh"
    echo "$line" >>/run/panel/tools.log
    echo "$line" >/run/panel/tools.pipe
fi
# The trace must show only the tools of the settings program, not those of the runtime.
PATH=/usr/sbin:/usr/bin:/sbin:/bin
export PATH
if [ ! -x /opt/talmero/hmi/runtime ]; then
    echo "runapp.sh: /opt/talmero/hmi/runtime is not installed" >&2
    exit 1
fi
/opt/talmero/hmi/runtime
