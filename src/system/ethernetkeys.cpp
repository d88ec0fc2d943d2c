#include "system/ethernetkeys.h"

const EthernetKeys &ethernetKeys(int lan)
{
    static const EthernetKeys keys[] = {
        {"eth0", "ethernet.eth0", "ethernet.eth0.mask"},
        {"eth1", "ethernet.eth1", "ethernet.eth1.mask"},
    };
    return keys[lan == 0 ? 0 : 1];
}
