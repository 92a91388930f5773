// SPDX-License-Identifier: MIT
#include "frame/fileutils.h"

#include "frame/archive.h"
#include "frame/interface.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QIODevice>
#include <QRegExp>
#include <QSaveFile>

#include <algorithm>

namespace Vela {

namespace {

const int copyBufferSize = 0x20000;
const unsigned int skipBufferSize = 256;

bool isSet(const QString &key)
{
    return Interface::instance()->option(key, QVariant()).toBool();
}

QFileDialog::Options openOptions()
{
    return isSet(QStringLiteral("use_native_open")) ? QFileDialog::Options()
                                                    : QFileDialog::DontUseNativeDialog;
}

/// Orders names of a prefix without digits, a number and an extension by prefix and number, all
/// others as plain strings.
class NumberedNameLess
{
public:
    bool operator()(const QString &a, const QString &b) const
    {
        if (!m_first.exactMatch(a) || !m_second.exactMatch(b))
            return a < b;
        const int prefixes = QString::compare(m_first.cap(1), m_second.cap(1));
        if (prefixes != 0)
            return prefixes < 0;
        return m_first.cap(2).toInt() < m_second.cap(2).toInt();
    }

private:
    QRegExp m_first{pattern()};
    QRegExp m_second{pattern()};

    static QString pattern()
    {
        return QStringLiteral("([^\\d]*)(\\d+)\\.[\\S]+");
    }
};

/// Copies what \a source still holds. Ends early if the source yields no more before its end.
void copyContent(QIODevice *source, QIODevice *destination)
{
    QByteArray buffer(copyBufferSize, Qt::Uninitialized);
    while (!source->atEnd()) {
        const qint64 count = source->read(buffer.data(), buffer.size());
        if (count <= 0)
            return;
        destination->write(buffer.constData(), count);
    }
}

QString withForwardSlashes(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

} // namespace

QString getOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                        const QString &filter)
{
    return QFileDialog::getOpenFileName(parent, caption, dir, filter, nullptr, openOptions());
}

QStringList getOpenFileNames(QWidget *parent, const QString &caption, const QString &dir,
                             const QString &filter)
{
    QStringList names =
        QFileDialog::getOpenFileNames(parent, caption, dir, filter, nullptr, openOptions());
    if (isSet(QStringLiteral("sort_file_names")))
        sortFileNames(names);
    return names;
}

QString getSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                        const QString &filter)
{
    return QFileDialog::getSaveFileName(parent, caption, dir, filter);
}

QString getExistingDirectory(QWidget *parent, const QString &caption, const QString &dir)
{
    return QFileDialog::getExistingDirectory(parent, caption, dir, QFileDialog::ShowDirsOnly);
}

void sortFileNames(QStringList &names)
{
    // Where numbered and other names mix, the order can run in a circle ("a2.x" before "a10.x"
    // before "a1b" before "a2.x"). A merge sort ends within the list even then; std::sort may run
    // past its ends.
    std::stable_sort(names.begin(), names.end(), NumberedNameLess());
}

bool copyFile(Archive &from, const QString &fromName, Archive &to, const QString &toName)
{
    if (fromName == toName)
        return false;
    QIODevice *source = from.openFile(fromName, QIODevice::ReadOnly);
    if (!source)
        return false;
    QIODevice *destination = to.openFile(toName, QIODevice::WriteOnly);
    if (destination) {
        copyContent(source, destination);
        to.closeFile(destination);
    }
    from.closeFile(source);
    return destination != nullptr;
}

QString fixFileCase(const QString &base, Archive &archive, const QString &path)
{
    if (archive.fileExists(base + path))
        return archive.absoluteFileName(base + path);
    QString fixed = base;
    const QStringList parts = path.split(QLatin1Char('/'));
    for (int i = 0; i < parts.size(); ++i) {
        const QDir::Filter kind = i + 1 < parts.size() ? QDir::Dirs : QDir::Files;
        const QStringList names = archive.entries(fixed, kind, QDir::Name);
        const auto match = std::find_if(names.begin(), names.end(), [&](const QString &name) {
            return name.compare(parts.at(i), Qt::CaseInsensitive) == 0;
        });
        if (!fixed.endsWith(QLatin1Char('/')))
            fixed += QLatin1Char('/');
        fixed += match == names.end() ? parts.at(i) : *match;
    }
    return archive.absoluteFileName(fixed);
}

QString absolutePathToRelative(const QString &path, const QString &base)
{
    QString target = withForwardSlashes(path);
    QString folder = withForwardSlashes(base);
    if (!folder.endsWith(QLatin1Char('/')))
        folder += QLatin1Char('/');
    int lastCommon = 0;
    for (int i = 0; i < qMin(folder.size(), target.size()) && folder[i] == target[i]; ++i) {
        if (folder[i] == QLatin1Char('/'))
            lastCommon = i;
    }
    const int start = lastCommon + 1;
    if (start < 2 && folder.size() < 2)
        return target;
    const QString up = QStringLiteral("../").repeated(folder.mid(start).count(QLatin1Char('/')));
    return up + target.mid(start);
}

QByteArray fileExtension(const QString &fileName)
{
    return QFileInfo(fileName).suffix().toUpper().toLatin1();
}

QString randomString(int length)
{
    static const char characters[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    QString result;
    for (int i = 0; i < length; ++i) {
        QT_WARNING_PUSH
        QT_WARNING_DISABLE_DEPRECATED
        result += QLatin1Char(characters[qrand() % 62]);
        QT_WARNING_POP
    }
    return result;
}

void skipRead(QIODevice *device, unsigned int count)
{
    char discarded[skipBufferSize];
    while (count > 0) {
        const unsigned int part = qMin(count, skipBufferSize);
        device->read(discarded, part);
        count -= part;
    }
}

// A full disk shows only when the buffer goes out. It takes a part first, without an error; asking
// for the rest brings the reason.
bool flushFile(QFileDevice &file)
{
    return file.flush() || file.flush();
}

// commit() itself does not ask whether the buffer went out.
bool commitFile(QSaveFile &file)
{
    return flushFile(file) && file.commit();
}

} // namespace Vela
