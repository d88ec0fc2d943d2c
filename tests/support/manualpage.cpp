#include "manualpage.h"

#include "diskfiles.h"

QByteArrayList examplesOfManualPage(const QByteArray &path)
{
    const QByteArray page
        = readFile(PANEL_SOURCE "/" + path).replace("\\-", "-").replace("\\e", "\\");
    QByteArrayList examples;
    for (qsizetype end = 0, start = 0; (start = page.indexOf("\n.EX\n", end)) >= 0;) {
        start += 5;
        end = page.indexOf(".EE\n", start);
        examples += page.mid(start, end - start);
    }
    return examples;
}

QString withProgram(const QString &program, const QByteArray &example)
{
    return QString("PATH=$PATH:'%1'\n").arg(program.section('/', 0, -2))
        + QString::fromUtf8(example);
}
