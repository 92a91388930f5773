// SPDX-License-Identifier: MIT
#include "studio/icons.h"

#include <QFile>
#include <QGuiApplication>

// The macro wants to be outside any namespace: a static library's resources are linked in only if
// something asks for them.
static void initResources()
{
    Q_INIT_RESOURCE(studio);
}

namespace Studio {

QIcon namedIcon(const QString &name)
{
    static const bool ready = (initResources(), true);
    Q_UNUSED(ready);
    const QString file = QStringLiteral(":/studio/icons/%1.png").arg(name);
    if (QFile::exists(file)) {
        // A selected row shows the icon as it is: a style's own version would be tinted away.
        QIcon icon(file);
        icon.addFile(file, QSize(), QIcon::Selected);
        return icon;
    }
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QIcon::fromTheme(name)
                                                                         : QIcon();
}

} // namespace Studio
