#include "packages/filewalk.h"

#include "system/files/folderlisting.h"
#include "system/paths.h"
#include "system/textcodec.h"

#include <QList>

#include <algorithm>
#include <queue>
#include <string_view>

namespace {
/// Selects files by the extension of their name.
class ExtensionFilter
{
public:
    ExtensionFilter(const QStringList &extensions, ExtensionCase extensionCase)
        : m_anyCase(extensionCase == ExtensionCase::AnyCase)
    {
        for (const QString &extension : extensions) {
            m_extensions += extension.toUtf8();
        }
    }

    bool accepts(std::string_view name) const
    {
        return std::any_of(
            m_extensions.begin(), m_extensions.end(),
            [this, name](const QByteArray &extension) { return endsWith(name, extension); });
    }

private:
    bool endsWith(std::string_view name, const QByteArray &extension) const
    {
        const auto size = size_t(extension.size());
        if (name.size() < size) {
            return false;
        }
        const std::string_view end = name.substr(name.size() - size);
        return m_anyCase ? qstrnicmp(end.data(), extension.constData(), size) == 0
                         : end == std::string_view(extension.constData(), size);
    }

    bool m_anyCase;
    QList<QByteArray> m_extensions;
};
} // namespace

QString searchFolder(const QString &configured)
{
    const QString folder = configured.isEmpty() ? QString(Paths::mediaFolder) : configured;
    return folder.endsWith('/') ? folder : folder + '/';
}

QStringList findFilesBelow(const QString &folder, const QStringList &extensions,
                           ExtensionCase extensionCase)
{
    const ExtensionFilter filter(extensions, extensionCase);
    const QByteArray top = bytesFromText(folder);
    QStringList found;
    std::queue<QByteArray> folders; // relative to the top; empty or ending with "/"
    folders.push(QByteArray());
    for (; !folders.empty(); folders.pop()) {
        const QByteArray &prefix = folders.front();
        FolderListing listing(top + prefix);
        while (const dirent *entry = listing.next()) {
            if (entry->d_name[0] == '.') {
                continue; // hidden, or the folder itself
            }
            const int type = listing.type(*entry);
            if (type == DT_DIR) {
                folders.push(prefix + entry->d_name + '/');
            } else if (type == DT_REG && filter.accepts(entry->d_name)) {
                found += textFromBytes(prefix + entry->d_name);
            }
        }
    }
    return found;
}
