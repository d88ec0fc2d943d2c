// Compares reading and writing a settings file of 100,000 keys with QSettings, in turn.

#include "system/settings/settingsfile.h"
#include "support/panelplace.h"
#include "support/resulttable.h"

#include <QFile>
#include <QSettings>

namespace {
constexpr int keys = 100'000;
constexpr int pairs = 15;
constexpr double target = 1.0; // times QSettings
constexpr char ourFile[] = "/tmp/ours.ini";
constexpr char peerFile[] = "/tmp/peer.ini";

QString keyOf(int number)
{
    return QString("section%1.key%2").arg(number % 100).arg(number);
}

QString valueOf(int number)
{
    return QString("value of %1, as long as an address").arg(number);
}

double readOurs()
{
    const auto begin = now();
    SettingsMap settings;
    readSettingsFile(ourFile, settings);
    const double time = millisecondsSince(begin);
    if (settings.size() != keys || settings.value(keyOf(keys - 1)) != valueOf(keys - 1)) {
        qFatal("the settings are incomplete");
    }
    return time;
}

double writeOurs(const SettingsMap &settings)
{
    const auto begin = now();
    if (!writeSettingsFile(ourFile, settings)) {
        qFatal("the settings are not written");
    }
    return millisecondsSince(begin);
}

/// QSettings reads the file at the first access.
double readPeer()
{
    const auto begin = now();
    const QSettings settings(peerFile, QSettings::IniFormat);
    const qsizetype count = settings.allKeys().size();
    const double time = millisecondsSince(begin);
    if (count != keys || settings.value(keyOf(keys - 1)) != valueOf(keys - 1)) {
        qFatal("QSettings has not read all settings");
    }
    return time;
}

/// Measures only the writing, not setting the keys.
double writePeer()
{
    QFile::remove(peerFile);
    QSettings settings(peerFile, QSettings::IniFormat);
    for (int number = 0; number < keys; ++number) {
        settings.setValue(keyOf(number), valueOf(number));
    }
    const auto begin = now();
    settings.sync();
    return millisecondsSince(begin);
}
} // namespace

int main()
{
    requirePanel();
    SettingsMap settings;
    for (int number = 0; number < keys; ++number) {
        settings.insert(keyOf(number), valueOf(number));
    }
    std::vector<double> written[2];
    std::vector<double> read[2];
    for (int pair = 0; pair < pairs; ++pair) {
        written[0].push_back(writeOurs(settings));
        written[1].push_back(writePeer());
        read[0].push_back(readOurs());
        read[1].push_back(readPeer());
    }
    ResultTable table;
    const std::string what = std::to_string(keys) + " settings; QSettings";
    table.addPair("read " + what, read[0], read[1], "ms", target);
    table.addPair("write " + what, written[0], written[1], "ms", target);
    return table.exitStatus();
}
