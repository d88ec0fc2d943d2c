#include "restore.h"

#include "guardedfiles.h"
#include "ifupdown.h"
#include "judge.h"
#include "storage.h"
#include "system/files/atomicfile.h"
#include "system/paths.h"

#include <QStringList>

namespace Guard {
namespace {
/// One run of the repair.
class Repair
{
public:
    bool run();

private:
    void restore(const GuardedFile &file);
    void bringTogether();
    bool write(const QString &path, const QByteArray &content, const QString &act);

    QStringList m_acts;
    bool m_isWhole = true;
};

QString wordFor(Fault fault)
{
    switch (fault) {
    case Fault::Empty:
        return "empty";
    case Fault::Cut:
        return "cut off";
    case Fault::Refused:
        return "refused by ifupdown";
    case Fault::None:
        break;
    }
    return {};
}

/// A copy that was damaged as well is none.
QByteArray goodCopyOf(const GuardedFile &file)
{
    const QByteArray copy = contentOf(copyPath(nameOf(file.path))).value_or(QByteArray());
    return faultOf(file.kind, copy) == Fault::None ? copy : QByteArray();
}

Fault faultAtBoot(const GuardedFile &file, const QByteArray &content, const QByteArray &copy)
{
    if (!copy.isEmpty() && content == copy) {
        return Fault::None; // it was checked when it was copied
    }
    switch (file.kind) {
    case Kind::Settings:
        return settingsFault(content, copy,
                             contentOf(Paths::interfacesFile).value_or(QByteArray()));
    case Kind::Interfaces: {
        const QByteArray settings = contentOf(Paths::settingsFile).value_or(QByteArray());
        const Fault fault = interfacesFault(content, copy, settingsIn(settings));
        return fault == Fault::None && isRefused(file.path) ? Fault::Refused : fault;
    }
    case Kind::Line:
    case Kind::NoCopy:
        break;
    }
    return faultOf(file.kind, content);
}

bool Repair::run()
{
    for (const GuardedFile &file : guardedFiles()) {
        if (file.kind != Kind::NoCopy) {
            restore(file);
        }
    }
    bringTogether();
    recordActs(m_acts);
    return m_isWhole;
}

void Repair::restore(const GuardedFile &file)
{
    const auto content = contentOf(file.path);
    if (!content) {
        return;
    }
    const QByteArray copy = goodCopyOf(file);
    const Fault fault = faultAtBoot(file, *content, copy);
    if (fault == Fault::None) {
        return;
    }
    const QString found = QString("%1 was %2").arg(file.path, wordFor(fault));
    if (copy.isEmpty()) {
        say(found + ", and there is no good copy of it");
        return;
    }
    write(file.path, copy, found + ": put its last good copy back");
}

/// The settings count, because the Ethernet page shows them.
void Repair::bringTogether()
{
    const auto text = contentOf(Paths::settingsFile);
    const auto interfaces = contentOf(Paths::interfacesFile);
    if (!text || !interfaces || faultOf(Kind::Settings, *text) != Fault::None) {
        return;
    }
    const SettingsMap settings = settingsIn(*text);
    if (!hasPortKeys(settings) && !wasPaired()) {
        return; // nobody has saved the Ethernet page yet: the file is the maker's
    }
    const Pairing pairing = comparePair(*interfaces, settings);
    if (pairing == Pairing::Equal) {
        notePairing();
        return;
    }
    const bool wasChecked = contentOf(copyPath(nameOf(Paths::interfacesFile))) == interfaces;
    const bool isUseless = faultOf(Kind::Interfaces, *interfaces) != Fault::None
        || (pairing == Pairing::Foreign && !wasChecked && isRefused(Paths::interfacesFile));
    if (pairing == Pairing::Foreign && !isUseless) {
        return;
    }
    const QByteArray wanted = interfacesFor(settings);
    if (isTextRefused(wanted)) {
        say(QString("%1 stays as it is: ifupdown would refuse what %2 says")
                .arg(QString(Paths::interfacesFile), QString(Paths::settingsFile)));
        return;
    }
    write(Paths::interfacesFile, wanted,
          QString("%1 did not say what %2 says: wrote it again")
              .arg(QString(Paths::interfacesFile), QString(Paths::settingsFile)));
}

/// Keeps what it replaces, for whoever looks into the case.
bool Repair::write(const QString &path, const QByteArray &content, const QString &act)
{
    const QByteArray old = contentOf(path).value_or(QByteArray());
    if (!old.isEmpty()) {
        storeSafely(copyPath(nameOf(path) + ".replaced"), old);
    }
    if (!replaceFile(path, content) || !makeDurable(path)) {
        say(QString("%1 cannot be written: it is not repaired").arg(path));
        m_isWhole = false;
        return false;
    }
    m_acts += act;
    return true;
}
} // namespace

bool restoreFiles()
{
    return Repair().run();
}
} // namespace Guard
