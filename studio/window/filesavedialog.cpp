// SPDX-License-Identifier: MIT
#include "studio/window/filesavedialog.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "project/project.h"
#include "project/projectfile.h"

#include <QMessageBox>
#include <QRegularExpression>

namespace Studio {

FileSaveDialog::FileSaveDialog(Vela::Interface &host, int type)
    : m_host(host)
    , m_type(type)
{
}

void FileSaveDialog::saveFileAs(Vela::ProjectFile *file)
{
    if (!file->canSave())
        return;
    const QString filter =
        QStringLiteral("%1 (%2);;%3 (*.*)").arg(kindText(), pattern(), tr("All files"));
    const QString chosen = Vela::getSaveFileName(
        m_host.mainWindow(), tr("Save %1 as...").arg(kind()), startFolder(*file), filter);
    if (chosen.isEmpty())
        return;
    const QString path = withExtension(chosen, pattern());
    const unsigned int flags =
        isOutside(*file, path) && askForCopy() ? unsigned(Vela::ProjectFile::Copy) : 0;
    Vela::Archive &disk = Vela::FileSystemArchive::instance();
    if (!file->toFile(disk, path, flags, nullptr))
        QMessageBox::critical(m_host.mainWindow(), tr("Save file error!"),
                              tr("An error has occurred while trying to save the file!"));
    if (Vela::Project *project = file->project())
        project->setOption(kind() + QStringLiteral("_path"), disk.absoluteFilePath(path), true);
}

QString FileSaveDialog::withExtension(const QString &path, const QString &pattern)
{
    // Of several extensions written without a blank between, the last one is the one captured.
    static const QRegularExpression oneExtension(QStringLiteral("^(?:\\*(\\.[a-zA-Z]+))*$"));
    const QString extension = oneExtension.match(pattern).captured(1);
    return path.endsWith(extension) ? path : path + extension;
}

QString FileSaveDialog::pattern() const
{
    const Vela::Engine *engine = m_host.engine();
    return engine ? engine->singleFileFilters().value(m_type) : QString();
}

QString FileSaveDialog::kind() const
{
    switch (m_type) {
    case Vela::Project::Sprites:
        return QStringLiteral("sprites");
    case Vela::Project::Sounds:
        return QStringLiteral("sounds");
    case Vela::Project::Animations:
        return QStringLiteral("animations");
    default:
        return QStringLiteral("text");
    }
}

QString FileSaveDialog::kindText() const
{
    switch (m_type) {
    case Vela::Project::Sprites:
        return tr("Sprites");
    case Vela::Project::Sounds:
        return tr("Sounds");
    case Vela::Project::Animations:
        return tr("Animations");
    default:
        return tr("Text");
    }
}

QString FileSaveDialog::startFolder(const Vela::ProjectFile &file) const
{
    const Vela::Project *project = file.project();
    if (!project)
        return QString();
    const QString folder = project->option(kind() + QStringLiteral("_path")).toString();
    return folder.isEmpty() ? project->option(QStringLiteral("project_path")).toString() : folder;
}

bool FileSaveDialog::isOutside(const Vela::ProjectFile &file, const QString &path) const
{
    return file.project() && !path.startsWith(file.project()->absolutePath());
}

bool FileSaveDialog::askForCopy() const
{
    const QString text =
        tr("This file isn't a child of the project directory, so will be ignored on 'Run in "
           "engine', 'Backup' and 'Save as' functions. Do you want to save it as copy?");
    return QMessageBox::warning(m_host.mainWindow(), tr("External file!"), text,
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
}

} // namespace Studio
