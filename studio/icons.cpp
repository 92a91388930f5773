// SPDX-License-Identifier: MIT
#include "studio/icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>

// The macro wants to be outside any namespace: a static library's resources are linked in only if
// something asks for them.
static void initResources()
{
    Q_INIT_RESOURCE(studio);
}

namespace Studio {

namespace {

/// Returns the drawing in one colour, with its transparency. Views ask for icons at every paint, so
/// the result is kept.
QPixmap silhouette(const QString &file, const QColor &color)
{
    const QString key = file + color.name();
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap.load(file);
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
        painter.end();
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

} // namespace

QIcon namedIcon(const QString &name)
{
    static const bool ready = (initResources(), true);
    Q_UNUSED(ready);
    const QString file = QStringLiteral(":/studio/icons/%1.png").arg(name);
    if (QFile::exists(file)) {
        // On a selected row a style would tint the icon away. Outlines take the colour of the text
        // there; the solid signs of messages keep their own.
        QIcon icon(file);
        const QColor text = QGuiApplication::palette().color(QPalette::HighlightedText);
        const bool isOutline =
            name.startsWith(QLatin1String("icon_")) || name.startsWith(QLatin1String("code_"));
        icon.addPixmap(isOutline ? silhouette(file, text) : QPixmap(file), QIcon::Selected);
        return icon;
    }
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QIcon::fromTheme(name)
                                                                         : QIcon();
}

} // namespace Studio
