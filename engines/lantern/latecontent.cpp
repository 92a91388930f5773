// SPDX-License-Identifier: MIT
#include "lantern/latecontent.h"

#include "frame/archive.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "project/projectfile.h"

#include <QCoreApplication>
#include <QFileDevice>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

} // namespace

void LateContent::attach(Vela::Archive &archive, const QString &name)
{
    bindTo(archive, name);
    m_waiting = true;
}

void LateContent::ensureLoaded() const
{
    if (!m_waiting)
        return;
    // The content is read late, but it was the file's all the time.
    LateContent *const self = const_cast<LateContent *>(this);
    self->m_waiting = false;
    self->load();
}

bool readAll(Vela::Archive &archive, const QString &name, qint64 largest, QByteArray &data,
             QString &error)
{
    QIODevice *const device = archive.openFile(name, QIODevice::ReadOnly);
    if (!device) {
        error = Texts::tr("The file '%1' cannot be read.").arg(name);
        return false;
    }
    // One byte more than is allowed tells a file that is too large, whatever it says of its size.
    const bool fits = device->size() <= largest;
    if (fits)
        data = device->isSequential() ? device->read(largest + 1) : device->readAll();
    archive.closeFile(device);
    if (fits && data.size() <= largest)
        return true;
    error =
        Texts::tr("The file '%1' is larger than %2 bytes and is not read.").arg(name).arg(largest);
    return false;
}

bool writeAll(Vela::Archive &archive, const QString &name, const QByteArray &data, QString &error)
{
    QString reason = Texts::tr("it cannot be opened or replaced");
    error = writeFailure(name, reason);
    QIODevice *const device = archive.openFile(name, QIODevice::WriteOnly);
    if (!device)
        return false;
    bool written = device->write(data) == data.size();
    if (auto *const file = qobject_cast<QFileDevice *>(device))
        written = Vela::flushFile(*file) && written;
    if (written)
        return archive.commitFile(device);
    error = writeFailure(name, device->errorString());
    archive.discardFile(device);
    return false;
}

QString writeFailure(const QString &name, const QString &reason)
{
    return Texts::tr("The file '%1' cannot be written: %2.").arg(name, reason);
}

bool mayReload(const Vela::ProjectFile &file)
{
    if (!file.fileExists())
        return false;
    if (!file.isModified())
        return true;
    return Vela::Interface::instance()
        && Vela::Interface::yesNoOption(
               Texts::tr("File modified"),
               Texts::tr("The file '%1' was changed by another program, and has changes here "
                         "that are not saved. Do you want to read it again?")
                   .arg(file.fileName()),
               QStringLiteral("showmsg_reload_modified"), 0, Vela::Interface::NoButton);
}

} // namespace Lantern
