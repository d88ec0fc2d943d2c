#include "doctorrun.h"

const char todaysIfconfig[]
    = "printf '%s: flags=4163<UP>  mtu 1500\\n' eth0\n"
      "printf '        inet 192.168.0.5  netmask 255.255.255.0\\n'\n"
      "printf '        ether 02:00:00:00:00:01  txqueuelen 1000  (Ethernet)\\n'\n";

ToolRun runDoctor(const QStringList &arguments)
{
    return runTool(DOCTOR, arguments);
}

QByteArrayList complaintsIn(const QByteArray &report)
{
    QByteArrayList complaints;
    for (const QByteArray &line : report.split('\n')) {
        if (!line.isEmpty() && !line.startsWith("ok ")) {
            complaints += line;
        }
    }
    return complaints;
}
