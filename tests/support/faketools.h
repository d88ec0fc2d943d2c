#pragma once

#include <QStringList>
#include <QTemporaryDir>

/// Stand-ins for tools, first on PATH during the lifetime of this object. A stand-in records its
/// arguments and then runs its body, which is empty at first.
class FakeTools
{
public:
    explicit FakeTools(const QStringList &names);
    ~FakeTools();
    Q_DISABLE_COPY_MOVE(FakeTools)

    /// Makes the tool @p name run the shell text @p body after it has recorded its arguments.
    void setBody(const QString &name, const QString &body) const;

    /// The recorded runs of all tools in order. Each is the name and then the arguments in
    /// brackets: "xset [s] [600]".
    QStringList calls() const;

    /// Clears the record.
    void forgetCalls() const;

private:
    QString filePath(const QString &name) const;

    QTemporaryDir m_folder;
    QByteArray m_previousPath;
};
