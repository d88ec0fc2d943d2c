#pragma once

/// Every file and folder of the panel that the program knows, spelt once.
namespace Paths {
inline constexpr char settingsFile[] = "/opt/talmero/bios/bios.ini";
inline constexpr char runtimeVersionFile[] = "/opt/talmero/bios/fwver";
inline constexpr char runtimeOemFile[] = "/opt/talmero/bios/oem";
inline constexpr char biosVersionFile[] = "/opt/talmero/bios/bios.version";
inline constexpr char modelFile[] = "/opt/talmero/bios/model";

/// Starts the HMI runtime and lives as long as it does.
inline constexpr char runtimeScript[] = "/opt/talmero/bios/runapp.sh";

/// The folder of the files above. Where it is missing this is no panel.
inline constexpr char biosFolder[] = "/opt/talmero/bios";

/// ifupdown's file, written whole by the Ethernet page.
inline constexpr char interfacesFile[] = "/etc/network/interfaces";

/// udev's rules that pin the names of the network interfaces, written whole by the factory window.
inline constexpr char namingRulesFile[] = "/etc/udev/rules.d/70-persistent-net.rules";

/// The RS-232 ports, numbered from 0 on.
inline constexpr char serialPort[] = "/dev/ttyS%1";
inline constexpr int serialPortCount = 3;

/// Each serial port that is open has a lock file here.
inline constexpr char lockFolder[] = "/var/lock";

/// Starts the session's programs; under its other name it starts none.
inline constexpr char sessionScript[] = "/root/.xinitrc";
inline constexpr char sessionScriptAside[] = "/root/xinitrc";

/// Its existence opens the factory window; what is in it does not matter.
inline constexpr char factoryMarker[] = "/media/usb0/talmero_setup";

/// Below it sticks are mounted. Where packages and fonts are looked for if no setting says where.
inline constexpr char mediaFolder[] = "/media/";

/// The HMI application is unpacked here.
inline constexpr char applicationFolder[] = "/home/dest";

/// The HMI runtime is unpacked here.
inline constexpr char firmwareFolder[] = "/home";

/// The HMI runtime finds its fonts here.
inline constexpr char fontFolder[] = "/usr/share/fonts/truetype/freefont/";
} // namespace Paths
