#include "debuglog.h"

namespace {
QStringList collected;
QtMessageHandler previous = nullptr;

void collect(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtDebugMsg) {
        collected += message;
    } else if (previous != nullptr) {
        previous(type, context, message);
    }
}
} // namespace

DebugLog::DebugLog()
{
    collected.clear();
    previous = qInstallMessageHandler(collect);
}

DebugLog::~DebugLog()
{
    qInstallMessageHandler(previous);
}

QStringList DebugLog::lines() const
{
    return collected;
}
