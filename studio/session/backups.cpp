// SPDX-License-Identifier: MIT
#include "studio/session/backups.h"

#include "frame/archive.h"
#include "frame/filesystemarchive.h"
#include "project/parentproject.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>

namespace Studio {

namespace {

const QLatin1String PackedSuffix(".zip");

/// Returns whichever of the two hours of a 12-hour clock the text of the half day names. That text
/// is in the language of whoever made the backup: where it is not known, the hour nearer to
/// \a written counts.
QDateTime onFullClock(const QDateTime &morning, const QString &halfDay, const QDateTime &written)
{
    const QDateTime evening = morning.addSecs(12 * 60 * 60);
    const QString half = halfDay.toLower();
    const QLocale locale = QLocale::system();
    if (half == QLatin1String("am") || half == locale.amText().toLower())
        return morning;
    if (half == QLatin1String("pm") || half == locale.pmText().toLower())
        return evening;
    return std::abs(morning.secsTo(written)) <= std::abs(evening.secsTo(written)) ? morning
                                                                                  : evening;
}

/// Reads time and label out of a name as ParentProject::backup() forms it. Other names are their
/// own label, with the time at which the file was written.
void readName(Backup &backup, const QDateTime &written)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d\\d\\.\\d\\d\\.\\d{4})_(\\d{1,2})\\.(\\d{1,2})\\.(\\d{1,2})_"
                       "([^_]*)_(.*)$"),
        QRegularExpression::DotMatchesEverythingOption);
    backup.label = backup.name;
    backup.time = written;

    const QRegularExpressionMatch match = pattern.match(backup.name);
    const QDate date = QDate::fromString(match.captured(1), QStringLiteral("dd.MM.yyyy"));
    const int hour = match.captured(2).toInt();
    const QTime time(hour % 12, match.captured(3).toInt(), match.captured(4).toInt());
    if (!match.hasMatch() || !date.isValid() || hour > 12 || !time.isValid())
        return;
    backup.time = onFullClock(QDateTime(date, time), match.captured(5), written);
    backup.label = match.captured(6);
}

qint64 folderSize(const QString &folder)
{
    qint64 size = 0;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::NoSymLinks,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        size += it.fileInfo().size();
    }
    return size;
}

Backup backupOf(const QFileInfo &info)
{
    Backup backup;
    backup.path = info.absoluteFilePath();
    backup.packed = !info.isDir();
    backup.name = info.fileName();
    if (backup.packed)
        backup.name.chop(PackedSuffix.size());
    backup.size = backup.packed ? info.size() : folderSize(backup.path);
    readName(backup, info.lastModified());
    return backup;
}

} // namespace

QString Backups::folderOf(const Vela::ParentProject &parent)
{
    const bool onDisk = &parent.archive() == &Vela::FileSystemArchive::instance();
    const QString base = onDisk ? parent.basePath() : parent.archive().path();
    return QDir::cleanPath(QDir(base).absoluteFilePath(QStringLiteral("backup")));
}

bool Backups::isValidLabel(const QString &label)
{
    static const QRegularExpression forbidden(QStringLiteral("[/\\\\:*?\"<>|\\x00-\\x1f\\x7f]"));
    return !label.trimmed().isEmpty() && label != QLatin1String(".")
        && !label.contains(QLatin1String("..")) && !label.contains(forbidden);
}

QString Backups::nameAt(const QDateTime &time, const QString &label)
{
    return time.toString(QStringLiteral("dd.MM.yyyy_h.m.s_ap_")) + label;
}

Backups::Backups(const QString &folder)
    : m_folder(folder)
{
}

QList<Backup> Backups::list() const
{
    QList<Backup> result;
    const QFileInfoList infos = QDir(m_folder).entryInfoList(
        QDir::Dirs | QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &info : infos) {
        const QString name = info.fileName();
        const bool packed =
            info.isFile() && name.endsWith(PackedSuffix) && name.size() > PackedSuffix.size();
        // A packed backup hides a folder of its name: a restore would take the packed one.
        const bool folder =
            info.isDir() && !QFileInfo(info.absoluteFilePath() + PackedSuffix).isFile();
        if (packed || folder)
            result.append(backupOf(info));
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const Backup &a, const Backup &b) { return a.time > b.time; });
    return result;
}

QList<Backup> Backups::find(const QString &name) const
{
    QList<Backup> labelled;
    const QList<Backup> all = list();
    for (const Backup &backup : all) {
        if (backup.name == name)
            return {backup};
        if (backup.label == name)
            labelled.append(backup);
    }
    return labelled;
}

} // namespace Studio
