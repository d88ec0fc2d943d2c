#pragma once

/// Every file and folder of the panel that the program uses.
namespace Paths {
inline constexpr char settingsFile[] = "/opt/talmero/bios/bios.ini";
inline constexpr char runtimeVersionFile[] = "/opt/talmero/bios/fwver";
inline constexpr char runtimeOemFile[] = "/opt/talmero/bios/oem";
inline constexpr char biosVersionFile[] = "/opt/talmero/bios/bios.version";
inline constexpr char modelFile[] = "/opt/talmero/bios/model";

/// Starts the HMI runtime and ends with it.
inline constexpr char runtimeScript[] = "/opt/talmero/bios/runapp.sh";

/// Folder of the files above. A machine without it is not a panel.
inline constexpr char biosFolder[] = "/opt/talmero/bios";

/// ifupdown's file. The Ethernet page overwrites all of it.
inline constexpr char interfacesFile[] = "/etc/network/interfaces";

/// udev rules that name the network interfaces. The factory window overwrites all of them.
inline constexpr char namingRulesFile[] = "/etc/udev/rules.d/70-persistent-net.rules";

/// The RS-232 ports, numbered from 0.
inline constexpr char serialPort[] = "/dev/ttyS%1";
inline constexpr int serialPortCount = 3;

/// Every open serial port has a lock file here.
inline constexpr char lockFolder[] = "/var/lock";

/// Starts the session's programs. Renaming it to the second name disables it.
inline constexpr char sessionScript[] = "/root/.xinitrc";
inline constexpr char sessionScriptAside[] = "/root/xinitrc";

/// If this file exists, the factory window opens. Its content does not matter.
inline constexpr char factoryMarker[] = "/media/usb0/talmero_setup";

/// USB sticks are mounted below this folder. Packages and fonts are searched for here by default.
inline constexpr char mediaFolder[] = "/media/";

/// Locked while a package is installed.
inline constexpr char installLock[] = "/run/talmero-install.lock";

/// The HMI application is unpacked here.
inline constexpr char applicationFolder[] = "/home/dest";

/// The HMI runtime is unpacked here.
inline constexpr char firmwareFolder[] = "/home";

/// The HMI runtime finds its fonts here.
inline constexpr char fontFolder[] = "/usr/share/fonts/truetype/freefont/";
} // namespace Paths
