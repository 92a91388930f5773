// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>
#include <QMap>
#include <QString>

/// A game of the Lantern engine with one open and one closed project and without any message.
namespace SmallGame {

/// Its main files have the line ends with which they are saved.
inline QMap<QString, QByteArray> files()
{
    return {
        {QStringLiteral("game.lantern"),
         "[game]\r\nname = Small\r\n[projects]\r\nopen = hero/hero.lantern\r\n"
         "closed = wolf/wolf.lantern\r\n"},
        {QStringLiteral("hero/hero.lantern"),
         "[project]\r\nname = Hero\r\nkind = character\r\n[files]\r\n"
         "sprites = sprites/idle.png\r\nscripts = hero.script\r\n"},
        {QStringLiteral("hero/hero.script"), "[script hero]\r\nat 1   wait 2\r\n"},
        {QStringLiteral("hero/sprites/idle.png"), QByteArray("\x89PNG\r\n\0\xff raw", 12)},
        {QStringLiteral("wolf/wolf.lantern"),
         "[project]\r\nname = Wolf\r\nkind = character\r\n[files]\r\n"
         "animations = run.motion\r\n"},
        {QStringLiteral("wolf/run.motion"), "# it stands still\r\n"},
    };
}

inline bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

/// Returns a null array if the file cannot be read.
inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool write(const QString &folder, const QMap<QString, QByteArray> &content = files())
{
    bool written = true;
    for (auto it = content.begin(); it != content.end(); ++it)
        written = writeFile(folder + QLatin1Char('/') + it.key(), it.value()) && written;
    return written;
}

/// Returns every file below a folder with its bytes, by its relative path.
inline QMap<QString, QByteArray> tree(const QString &folder)
{
    QMap<QString, QByteArray> result;
    const QFileInfoList infos =
        QDir(folder).entryInfoList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &info : infos) {
        if (!info.isDir()) {
            result.insert(info.fileName(), readFile(info.absoluteFilePath()));
            continue;
        }
        const QMap<QString, QByteArray> below = tree(info.absoluteFilePath());
        for (auto it = below.begin(); it != below.end(); ++it)
            result.insert(info.fileName() + QLatin1Char('/') + it.key(), it.value());
    }
    return result;
}

/// The same without the backups.
inline QMap<QString, QByteArray> content(const QString &folder)
{
    QMap<QString, QByteArray> result = tree(folder);
    for (auto it = result.begin(); it != result.end();) {
        if (it.key().startsWith(QLatin1String("backup/")))
            it = result.erase(it);
        else
            ++it;
    }
    return result;
}

} // namespace SmallGame
