// SPDX-License-Identifier: MIT
#include "studio/window/recoveryoffer.h"

#include "code/codedocument.h"
#include "frame/textcodecs.h"
#include "project/filewatchobject.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "studio/host.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"
#include "studio/session/textautosave.h"
#include "studio/window/projectcommands.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QLocale>
#include <QPointer>
#include <QTimer>
#include <QtConcurrentRun>

#include <algorithm>

namespace Studio {

namespace {

constexpr qint64 PreviewSize = 64 * 1024; // of what is left of a file of any kind
constexpr int BusyDelay = 500;            // ms to the next look whether the user is free

QString describe(const FileState &state)
{
    const QLocale locale;
    return state.size < 0
        ? RecoveryOffer::tr("is gone")
        : RecoveryOffer::tr("%1, %2").arg(locale.toString(state.time, QLocale::ShortFormat),
                                          locale.formattedDataSize(state.size));
}

/// Returns the beginning of a file as text, with one kind of line ends. Sets \a note to what is to
/// be said of a file that is no text.
QString beginningOf(const QString &name, QString *note)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly)) {
        *note = RecoveryOffer::tr("%1: cannot be read.").arg(name);
        return QString();
    }
    const QByteArray data = file.read(PreviewSize);
    if (data.contains('\0')) {
        *note = RecoveryOffer::tr("There is no preview of this kind of file.");
        return QString();
    }
    int codec = -1;
    return Vela::TextCodecs::stringFromData(data, &codec).remove(QLatin1Char('\r'));
}

RecoveryItem::Preview previewOf(const InterruptedSave &save)
{
    RecoveryItem::Preview preview;
    preview.left = beginningOf(save.temporary, &preview.note);
    if (save.targetExists && preview.note.isEmpty())
        preview.present = beginningOf(save.target, &preview.note);
    if (!preview.note.isEmpty())
        return {{}, {}, preview.note};
    if (qMax(save.targetSize, save.temporarySize) > PreviewSize)
        preview.note = RecoveryOffer::tr("Only the beginning is shown.");
    return preview;
}

} // namespace

RecoveryOffer::RecoveryOffer(Host &host, ProjectCommands &commands, TextAutosave &autosave,
                             QWidget *window)
    : m_host(host)
    , m_commands(commands)
    , m_autosave(autosave)
    , m_window(window)
{
}

void RecoveryOffer::begin()
{
    if (!m_commands.session())
        return;
    const QPointer<Vela::ParentProject> parent(m_commands.session()->parent());
    const QDateTime begun = QDateTime::currentDateTime();
    auto *search = new QFutureWatcher<Left>(this);
    connect(search, &QFutureWatcherBase::finished, this, [this, search, parent, begun] {
        search->deleteLater();
        Left left = search->result();
        // A save that began meanwhile was not interrupted: it is being written.
        const auto isNew = [&](const InterruptedSave &save) { return save.temporaryTime >= begun; };
        left.saves.erase(std::remove_if(left.saves.begin(), left.saves.end(), isNew),
                         left.saves.end());
        if (!parent || !m_commands.session() || parent != m_commands.session()->parent())
            return;
        if (m_commands.isBusy() || QApplication::activeModalWidget())
            QTimer::singleShot(BusyDelay, this, &RecoveryOffer::begin);
        else
            show(left);
    });
    const auto find = [](const RecoverySearch &where, const QString &folder,
                         const QString &project) {
        return Left{Recovery::find(where), std::make_shared<LeftTexts>(folder, project)};
    };
    search->setFuture(QtConcurrent::run(find, Recovery::searchFor(*parent), m_autosave.folder(),
                                        TextAutosave::projectName(*parent)));
}

void RecoveryOffer::show(const Left &left)
{
    for (const QString &problem : left.texts->problems())
        m_host.log(problem);
    QList<RecoveryItem> items;
    for (const UnsavedText &text : left.texts->texts()) {
        // It was saved, but the program ended before it could take note of that.
        QString ignored;
        if (isInPlace(text))
            LeftTexts::discard(text, &ignored);
        else
            items.append(itemOf(text));
    }
    for (const InterruptedSave &save : left.saves)
        items.append(itemOf(save));
    if (!items.isEmpty())
        RecoveryDialog(items, m_window).exec();
}

RecoveryItem RecoveryOffer::itemOf(const InterruptedSave &save)
{
    RecoveryItem item;
    item.kind = RecoveryItem::Save;
    item.file = relativeToRoot(*m_commands.session()->parent(), save.target);
    item.place = save.temporary;
    item.time = save.temporaryTime;
    item.presentFile = save.targetExists && !save.differs
        ? tr("has the same content")
        : describe({save.targetExists ? save.targetSize : -1, save.targetTime});
    item.preview = [save] { return Studio::previewOf(save); };
    item.recover = [this, save](QString *error) { return recoverSave(save, error); };
    item.discard = [save](QString *error) { return Recovery::discard(save, error); };
    return item;
}

RecoveryItem RecoveryOffer::itemOf(const UnsavedText &text)
{
    RecoveryItem item;
    item.kind = RecoveryItem::Text;
    item.file = text.file;
    item.place = text.entry;
    item.time = text.time;
    const FileState now = FileState::of(absoluteName(text));
    item.presentFile = now == text.disk ? tr("unchanged since then")
                                        : tr("changed since then: %1").arg(describe(now));
    item.preview = [this, text] { return previewOf(text); };
    item.recover = [this, text](QString *error) { return recoverText(text, error); };
    item.discard = [text](QString *error) { return LeftTexts::discard(text, error); };
    return item;
}

RecoveryItem::Preview RecoveryOffer::previewOf(const UnsavedText &text) const
{
    if (const Vela::CodeDocument *document = documentAt(text.file))
        return {document->toString(), text.text, {}};
    RecoveryItem::Preview preview{{}, text.text, {}};
    const QString name = absoluteName(text);
    if (QFileInfo::exists(name))
        preview.present = beginningOf(name, &preview.note);
    if (closedProjectOf(text.file).isEmpty())
        preview.note = tr("The file is no text of the project now. Recovering writes what is left "
                          "to the disk: to this file if it is gone, else beside it.");
    else
        preview.note = tr("Recovering opens the file's project.");
    return preview;
}

bool RecoveryOffer::recoverSave(const InterruptedSave &save, QString *error)
{
    QString kept;
    if (!Recovery::recover(save, &kept, error))
        return false;
    readAgain(relativeToRoot(*m_commands.session()->parent(), save.target));
    return true;
}

bool RecoveryOffer::recoverText(const UnsavedText &text, QString *error)
{
    const QString closed = documentAt(text.file) ? QString() : closedProjectOf(text.file);
    if (!closed.isEmpty() && !m_commands.session()->openClosedProject(closed, error))
        return false;
    if (Vela::CodeDocument *document = documentAt(text.file)) {
        m_autosave.recover(text, *document);
    } else {
        QString name;
        if (!LeftTexts::putBack(text, absoluteName(text), &name, error))
            return false;
        m_host.log(tr("The unsaved text of %1 was written to %2.").arg(text.file, name));
    }
    Q_EMIT recovered(text.file);
    return true;
}

// Returns an empty path if it is a file of none.
QString RecoveryOffer::closedProjectOf(const QString &path) const
{
    const Vela::ParentProject &parent = *m_commands.session()->parent();
    const QStringList projects = closedProjects(parent);
    for (const QString &project : projects) {
        const QStringList files = closedProjectFiles(parent, project);
        const bool isIn = std::any_of(files.begin(), files.end(), [&](const QString &file) {
            return QDir::cleanPath(file) == path;
        });
        if (isIn)
            return project;
    }
    return QString();
}

bool RecoveryOffer::isInPlace(const UnsavedText &text) const
{
    const Vela::CodeDocument *document = documentAt(text.file);
    return document && document->codecName() == text.encoding && document->toString() == text.text;
}

void RecoveryOffer::readAgain(const QString &path)
{
    const Vela::ParentProject &parent = *m_commands.session()->parent();
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = project->files();
        for (Vela::ProjectFile *file : files) {
            if (relativeToRoot(parent, file->fileName()) != path)
                continue;
            file->fromFile(file->archive(), file->fileName(), 0, nullptr);
            // The watcher shall not ask about what it was told to do.
            if (auto *watched = dynamic_cast<Vela::FileWatchObject *>(file))
                watched->pauseWatch(false);
        }
    }
    Q_EMIT recovered(path);
}

// Returns null where the project has not opened the text.
Vela::CodeDocument *RecoveryOffer::documentAt(const QString &path) const
{
    const Vela::ParentProject &parent = *m_commands.session()->parent();
    const QList<Vela::CodeDocument *> documents = openDocuments(parent);
    for (Vela::CodeDocument *document : documents) {
        if (relativeToRoot(parent, document->fileName()) != path)
            continue;
        document->isEmpty(); // one that is read late is read by being asked
        return document;
    }
    return nullptr;
}

QString RecoveryOffer::absoluteName(const UnsavedText &text) const
{
    const QDir root(rootPath(*m_commands.session()->parent()));
    return QDir::cleanPath(root.absoluteFilePath(text.file));
}

} // namespace Studio
