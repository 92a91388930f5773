// SPDX-License-Identifier: MIT
#include "studio/session/unsavedtexts.h"

#include "frame/fileutils.h"
#include "frame/textcodecs.h"
#include "studio/session/recovery.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLockFile>
#include <QSaveFile>
#include <QUuid>

#include <algorithm>

namespace Studio {

namespace {

// A text is kept as one line of JSON, which says what it is, and the text itself in UTF-8.
constexpr int Format = 1;
constexpr qint64 LongestHead = 64 * 1024;
const QLatin1String entrySuffix(".text");
const QStringList entryPattern(QStringLiteral("*.text"));

const QString formatKey = QStringLiteral("format");
const QString projectKey = QStringLiteral("project");
const QString fileKey = QStringLiteral("file");
const QString encodingKey = QStringLiteral("encoding");
const QString timeKey = QStringLiteral("time");
const QString diskSizeKey = QStringLiteral("diskSize");
const QString diskTimeKey = QStringLiteral("diskTime");
const QString bytesKey = QStringLiteral("bytes");
const QString checkKey = QStringLiteral("check");

QString checkOf(const QByteArray &content)
{
    return QLatin1String(QCryptographicHash::hash(content, QCryptographicHash::Sha1).toHex());
}

QByteArray headOf(const UnsavedText &text, const QByteArray &content)
{
    const auto written = [](const QDateTime &time) {
        return time.toUTC().toString(Qt::ISODateWithMs);
    };
    QJsonObject head;
    head[formatKey] = Format;
    head[projectKey] = text.project;
    head[fileKey] = text.file;
    head[encodingKey] = QString::fromLatin1(text.encoding);
    head[timeKey] = written(QDateTime::currentDateTimeUtc());
    head[diskSizeKey] = text.disk.size;
    head[diskTimeKey] = written(text.disk.time);
    head[bytesKey] = content.size();
    head[checkKey] = checkOf(content);
    return QJsonDocument(head).toJson(QJsonDocument::Compact) + '\n';
}

enum class Reading { Done, OtherProject, Broken };

Reading readEntry(const QString &name, const QString &project, UnsavedText *text)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LongestHead + UnsavedTexts::LargestText)
        return Reading::Broken;
    const QJsonObject head = QJsonDocument::fromJson(file.readLine(LongestHead)).object();
    const auto value = [&head](const QString &key) { return head.value(key).toString(); };
    const auto time = [&](const QString &key) {
        return QDateTime::fromString(value(key), Qt::ISODateWithMs).toLocalTime();
    };
    if (head.value(formatKey).toInt() != Format || value(fileKey).isEmpty())
        return Reading::Broken;
    if (value(projectKey) != project)
        return Reading::OtherProject;
    const QByteArray content = file.readAll();
    if (content.size() != head.value(bytesKey).toInt(-1) || checkOf(content) != value(checkKey))
        return Reading::Broken;
    const FileState disk{qint64(head.value(diskSizeKey).toDouble(-1)), time(diskTimeKey)};
    *text = {project,
             value(fileKey),
             value(encodingKey).toLatin1(),
             disk,
             QString::fromUtf8(content),
             time(timeKey),
             name};
    return Reading::Done;
}

bool makePrivateFolder(const QString &folder)
{
    return QDir().mkpath(folder)
        && QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

std::unique_ptr<QLockFile> lockOf(const QString &folder)
{
    auto lock = std::make_unique<QLockFile>(folder + QLatin1String(".lock"));
    // However long a program runs, the lock is its own.
    lock->setStaleLockTime(0);
    return lock;
}

} // namespace

FileState FileState::of(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.exists() ? FileState{info.size(), info.lastModified()} : FileState();
}

bool FileState::operator==(const FileState &other) const
{
    return size == other.size && time == other.time;
}

bool FileState::operator!=(const FileState &other) const
{
    return !(*this == other);
}

int UnsavedText::codec() const
{
    const int index = Vela::TextCodecs::index(encoding.constData());
    return Vela::TextCodecs::name(index) == encoding ? index : -1;
}

UnsavedTexts::UnsavedTexts(const QString &folder)
    : m_folder(folder)
    , m_own(folder + QLatin1Char('/') + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
}

UnsavedTexts::~UnsavedTexts()
{
    if (m_lock)
        QDir(m_own).removeRecursively();
}

bool UnsavedTexts::begin(QString *error)
{
    std::unique_ptr<QLockFile> lock = m_lock ? nullptr : lockOf(m_own);
    // Somebody who clears the user's folders away may have taken the own one along.
    const bool isReady =
        makePrivateFolder(m_folder) && (m_lock || lock->tryLock(0)) && makePrivateFolder(m_own);
    if (!isReady)
        *error = tr("%1: the folder for unsaved texts cannot be made.").arg(m_own);
    else if (lock)
        m_lock = std::move(lock);
    return isReady;
}

bool UnsavedTexts::write(const UnsavedText &text, QString *error)
{
    const QByteArray content = text.text.toUtf8();
    if (content.size() > LargestText) {
        *error = tr("%1: the text is too large to be kept against a crash.").arg(text.file);
        return false;
    }
    if (!begin(error))
        return false;
    QSaveFile file(entryOf(text.project, text.file));
    const QByteArray head = headOf(text, content);
    const bool isWritten = file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)
        && file.write(head) == head.size() && file.write(content) == content.size()
        && Vela::commitFile(file);
    if (!isWritten)
        *error = tr("%1: the unsaved text cannot be written: %2")
                     .arg(file.fileName(), file.errorString());
    return isWritten;
}

bool UnsavedTexts::adopt(const UnsavedText &text, QString *error)
{
    if (!begin(error))
        return false;
    const QString name = entryOf(text.project, text.file);
    QFile::remove(name);
    QFile entry(text.entry);
    if (entry.rename(name))
        return true;
    *error = tr("%1: cannot be renamed to %2: %3").arg(text.entry, name, entry.errorString());
    return false;
}

void UnsavedTexts::remove(const QString &project, const QString &file)
{
    QFile::remove(entryOf(project, file));
}

QString UnsavedTexts::entryOf(const QString &project, const QString &file) const
{
    const QByteArray place = (project + QLatin1Char('\n') + file).toUtf8();
    return m_own + QLatin1Char('/') + checkOf(place) + entrySuffix;
}

LeftTexts::LeftTexts(const QString &folder, const QString &project)
{
    const QFileInfoList folders = QDir(folder).entryInfoList(
        QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &info : folders) {
        Claim claim{info.absoluteFilePath(), lockOf(info.absoluteFilePath())};
        if (!claim.lock->tryLock(0))
            continue; // its program runs, or another one offers its texts
        const int before = m_texts.size();
        read(claim.folder, project);
        if (m_texts.size() > before)
            m_claims.push_back(std::move(claim));
        else
            release(claim);
    }
    std::stable_sort(m_texts.begin(), m_texts.end(),
                     [](const UnsavedText &a, const UnsavedText &b) { return a.time > b.time; });
}

LeftTexts::~LeftTexts()
{
    for (const Claim &claim : m_claims)
        release(claim);
}

void LeftTexts::release(const Claim &claim)
{
    if (QDir(claim.folder).entryList(entryPattern, QDir::Files).isEmpty())
        QDir(claim.folder).removeRecursively();
}

void LeftTexts::read(const QString &folder, const QString &project)
{
    const QFileInfoList infos =
        QDir(folder).entryInfoList(entryPattern, QDir::Files | QDir::NoSymLinks, QDir::Name);
    for (const QFileInfo &info : infos) {
        if (m_texts.size() == MostTexts) {
            m_problems.append(tr("%1: there are too many unsaved texts to read.").arg(folder));
            return;
        }
        UnsavedText text;
        switch (readEntry(info.absoluteFilePath(), project, &text)) {
        case Reading::Done:
            m_texts.append(text);
            break;
        case Reading::Broken:
            m_problems.append(tr("%1: is broken and holds no unsaved text that can be recovered.")
                                  .arg(info.absoluteFilePath()));
            break;
        case Reading::OtherProject:
            break;
        }
    }
}

const QList<UnsavedText> &LeftTexts::texts() const
{
    return m_texts;
}

const QStringList &LeftTexts::problems() const
{
    return m_problems;
}

bool LeftTexts::putBack(const UnsavedText &text, const QString &fileName, QString *written,
                        QString *error)
{
    *written = QFileInfo::exists(fileName)
        ? Recovery::freeName(fileName + QStringLiteral(".recovered"))
        : fileName;
    QString lines = text.text;
    lines.replace(QLatin1Char('\n'), QLatin1String("\r\n")); // as texts are saved
    const QByteArray content = Vela::TextCodecs::stringToData(lines, text.codec());
    QDir().mkpath(QFileInfo(*written).absolutePath());
    QSaveFile file(*written);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
        && Vela::commitFile(file))
        return discard(text, error);
    *error = tr("%1: cannot be written: %2").arg(*written, file.errorString());
    return false;
}

bool LeftTexts::discard(const UnsavedText &text, QString *error)
{
    QFile file(text.entry);
    if (file.remove())
        return true;
    *error = tr("%1: cannot be removed: %2").arg(text.entry, file.errorString());
    return false;
}

} // namespace Studio
