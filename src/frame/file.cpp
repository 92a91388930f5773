// SPDX-License-Identifier: MIT
#include "frame/file_p.h"

#include "frame/filesync_p.h"
#include "frame/fileutils.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>

namespace Vela {

namespace {

constexpr int suffixLength = 6;
constexpr unsigned long retryPause = 200; // milliseconds
constexpr unsigned long renamePause = 20; // milliseconds
constexpr int failuresPerQuestion = 10;

/// A program without windows has nobody to ask.
bool canAsk()
{
    return qobject_cast<QApplication *>(QCoreApplication::instance());
}

} // namespace

File::File(const QString &path)
    : QFile(path)
    , m_target(path)
{
}

File::~File()
{
    bringToDisk();
    if (isReplacement() && !QFile::exists(fileName()))
        noteFailure(tr("The temporary file is missing."));

    bool isInPlace = m_failure.isEmpty();
    if (!isInPlace) {
        const QString reason = m_failure;
        discard();
        tellFailure(reason);
    } else if (isReplacement()) {
        isInPlace = replaceTarget();
    }
    if (m_isInPlace)
        *m_isInPlace = isInPlace;
}

void File::reportTo(bool *isInPlace)
{
    m_isInPlace = isInPlace;
}

bool File::isReplacement() const
{
    return fileName() != m_target.fileName();
}

bool File::open(OpenMode mode)
{
    if ((mode & WriteOnly) && m_target.exists())
        return openReplacement(mode);
    const bool isOpened = QFile::open(mode);
    m_isNew = isOpened && (mode & WriteOnly);
    return isOpened;
}

bool File::openReplacement(OpenMode mode)
{
    const QString target = m_target.fileName();
    // A file that an interrupted save left behind may hold the only copy: its name is not reused.
    do {
        setFileName(target + randomString(suffixLength));
    } while (QFile::exists(fileName()));

    const bool needsContent = mode & (ReadOnly | Append);
    if ((!needsContent || QFile::copy(target, fileName())) && QFile::open(mode & ~ExistingOnly)
        && m_target.open(ReadWrite)) {
        setPermissions(m_target.permissions());
        return true;
    }
    m_target.close();
    QFile::close();
    QFile::remove(fileName());
    setFileName(target);
    return false;
}

qint64 File::writeData(const char *data, qint64 size)
{
    // A disk that fills up takes a part and reports no error; asking for the rest brings it.
    qint64 written = 0;
    while (written < size) {
        const qint64 count = QFile::writeData(data + written, size - written);
        if (count <= 0) {
            noteFailure(errorString());
            return written > 0 ? written : -1;
        }
        written += count;
    }
    return written;
}

void File::close()
{
    bringToDisk();
    QFile::close();
}

/// Finds out, while the target is still whole, whether everything that was written is on the disk.
void File::bringToDisk()
{
    if (!isWritable())
        return;
    if (!flushFile(*this))
        noteFailure(errorString());
    else if (isReplacement() && !syncToDisk(*this))
        noteFailure(qt_error_string());
}

bool File::replaceTarget()
{
    m_target.close();
    const QString target = m_target.fileName();
    if (!retry(&File::removeTarget, tr("File error!"),
               tr("Can't replace contents of file '%1'. Do you want to try again?\nObs.: You can "
                  "delete the file and rename the temporary one manually. Seems that something is "
                  "preventing the file to be replaced.")
                   .arg(target))) {
        discard();
        return false;
    }
    QThread::msleep(renamePause);
    QFile::close();
    return retry(
        &File::renameToTarget, tr("File rename error!"),
        tr("Can't rename temporary file to '%1'. Do you want to try again?\nObs.: You can rename "
           "it manually. Seems that something is preventing the file to be renamed.")
            .arg(target));
}

void File::discard()
{
    m_target.close();
    QFile::close();
    if (isReplacement() || m_isNew) {
        retry(&File::removeWritten, tr("File remove error!"),
              tr("Can't remove temporary file to '%1'. Do you want to try again?\nObs.: You can "
                 "remove it manually. Seems that something is preventing the file to be removed.")
                  .arg(m_target.fileName()));
    }
    setFileName(m_target.fileName());
    m_isNew = false;
    m_failure.clear();
}

/// Runs a step until it succeeds or the user gives up, and returns whether it succeeded.
bool File::retry(bool (File::*step)(), const QString &title, const QString &question)
{
    for (int failures = 0; !(this->*step)();) {
        QThread::msleep(retryPause);
        if (++failures < failuresPerQuestion)
            continue;
        if (!canAsk()
            || QMessageBox::question(nullptr, title, question, QMessageBox::Yes | QMessageBox::No)
                != QMessageBox::Yes)
            return false;
        failures = 0;
    }
    return true;
}

// The questions invite the user to put things right by hand. What is already gone, or already
// renamed, therefore counts as done.

bool File::removeTarget()
{
    return QFile::remove(m_target.fileName()) || !m_target.exists();
}

bool File::removeWritten()
{
    return QFile::remove(fileName()) || !QFile::exists(fileName());
}

bool File::renameToTarget()
{
    return rename(m_target.fileName()) || !QFile::exists(fileName());
}

void File::noteFailure(const QString &reason)
{
    if (m_failure.isEmpty())
        m_failure = reason;
}

void File::tellFailure(const QString &reason) const
{
    const QString text = tr("Can't write file '%1': %2\nObs.: The new contents were not saved, and "
                            "the file is as it was before.")
                             .arg(m_target.fileName(), reason);
    if (canAsk())
        QMessageBox::critical(nullptr, tr("File error!"), text);
    else
        qWarning("%s", qUtf8Printable(text));
}

} // namespace Vela
