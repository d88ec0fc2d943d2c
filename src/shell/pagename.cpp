#include "shell/pagename.h"

QString pageButtonName(const QString &label, int page)
{
    return label + ':' + QString::number(page);
}

int pageIndexFromName(const QString &name)
{
    return name.section(':', 1, 1).toInt();
}
