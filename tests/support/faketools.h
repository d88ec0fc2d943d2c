#pragma once

#include <QStringList>
#include <QTemporaryDir>

/// Stand-ins for tools, first on PATH while this lives. Each records its arguments and then does
/// what it was told to, at first nothing.
class FakeTools
{
public:
    explicit FakeTools(const QStringList &names);
    ~FakeTools();
    Q_DISABLE_COPY_MOVE(FakeTools)

    /// Makes the tool @p name run the shell text @p body after it has recorded its arguments.
    void setBody(const QString &name, const QString &body) const;

    /// The recorded runs of all tools in order, one text each: the name, then the arguments,
    /// each in brackets: "xset [s] [600]".
    QStringList calls() const;

    /// Starts the record of the runs anew.
    void forgetCalls() const;

private:
    QString filePath(const QString &name) const;

    QTemporaryDir m_folder;
    QByteArray m_previousPath;
};
