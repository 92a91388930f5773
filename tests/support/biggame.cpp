// SPDX-License-Identifier: MIT
#include "support/biggame.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

namespace {

constexpr int filesPerProject = 50;
constexpr int kinds = 3;

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray scriptText(QRandomGenerator &random)
{
    QByteArray text;
    while (text.size() < 4000)
        text += "walk " + QByteArray::number(random.bounded(320)) + ", "
            + QByteArray::number(random.bounded(180)) + "\n";
    return text;
}

// Runs of a few values, as in a drawing with a palette.
QByteArray pictureBytes(QRandomGenerator &random)
{
    QByteArray bytes;
    while (bytes.size() < 12000)
        bytes += QByteArray(random.bounded(1, 20), char(random.bounded(16)));
    return bytes;
}

bool writeProject(const QString &folder, const QString &name, QRandomGenerator &random)
{
    static const char *const settings[kinds] = {"scripts", "sprites", "sounds"};
    static const char *const extensions[kinds] = {"script", "png", "wav"};
    QByteArray main = "[project]\nname = " + name.toUtf8() + "\nkind = character\n\n[files]\n";
    for (int i = 0; i < filesPerProject - 1; ++i) {
        const int kind = i % kinds;
        const QByteArray file = QByteArray("f") + QByteArray::number(i) + '.' + extensions[kind];
        main += QByteArray(settings[kind]) + " = parts/" + file + '\n';
        const QByteArray content = kind == 0 ? scriptText(random) : pictureBytes(random);
        if (!write(folder + QLatin1String("/parts/") + QLatin1String(file), content))
            return false;
    }
    return write(folder + QLatin1Char('/') + name + QLatin1String(".lantern"), main);
}

} // namespace

int writeBigGame(const QString &folder, int projects)
{
    QRandomGenerator random(20261122);
    QByteArray game = "[game]\nname = Big\n\n[projects]\n";
    for (int i = 0; i < projects; ++i) {
        const QString name = QStringLiteral("p%1").arg(i);
        const QString place = folder + QLatin1Char('/') + name;
        if (!QDir().mkpath(place + QLatin1String("/parts")) || !writeProject(place, name, random))
            return 0;
        game += "open = " + name.toUtf8() + '/' + name.toUtf8() + ".lantern\n";
    }
    if (!write(folder + QLatin1String("/game.lantern"), game))
        return 0;
    return projects * filesPerProject + 1;
}
