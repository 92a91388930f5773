// SPDX-License-Identifier: MIT
#include "studio/window/screenshottour.h"

#include "image/sprites.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "sound/sounds.h"
#include "sound/soundsample.h"
#include "studio/host.h"
#include "studio/session/projectcontents.h"
#include "studio/window/fileview.h"
#include "studio/window/mainwindow.h"
#include "studio/window/projectdock.h"
#include "studio/window/propertiesdock.h"
#include "studio/window/soundview.h"
#include "studio/window/soundwaveform.h"
#include "studio/window/structuredock.h"
#include "studio/window/textplaces.h"
#include "studio/window/theme.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScreen>
#include <QTextBlock>
#include <QToolButton>
#include <QToolTip>
#include <QTreeView>

namespace Studio {

namespace {

constexpr int SettleTime = 400; // ms until everything is painted and read

void settle()
{
    QEventLoop loop;
    QTimer::singleShot(SettleTime, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

ScreenshotTour::ScreenshotTour(MainWindow &window, const QString &folder)
    : m_window(window)
    , m_folder(folder)
{
}

QStringList ScreenshotTour::run(const QString &path)
{
    if (!QDir().mkpath(m_folder))
        return {tr("%1: the folder cannot be made").arg(m_folder)};
    m_window.setGeometry(m_window.screen()->availableGeometry());
    m_window.show();
    settle();
    take(QStringLiteral("welcome"));
    takeDialog(QStringLiteral("new-project"), "new");
    if (path.isEmpty())
        return m_errors;
    if (!m_window.openProject(path))
        return {tr("%1: cannot be opened").arg(path)};
    showProject();
    showDialogs();
    showDark();
    m_window.close();
    return m_errors;
}

void ScreenshotTour::showProject()
{
    m_window.findChild<QTreeView *>(QStringLiteral("projectTree"))->expandAll();
    settle();
    take(QStringLiteral("project"));
    showMessage();
    showText();
    showPictures();
    showSounds(QStringLiteral("sounds"));
    makeBackup();
    editProperty(QStringLiteral("Encoding"), QStringLiteral("UTF-16"));
    take(QStringLiteral("unsaved"));
}

void ScreenshotTour::showPictures()
{
    const Vela::ProjectFile *image = nullptr;
    const Vela::Sprites *most = nullptr;
    largest(Vela::Project::Sprites, most, image);
    if (most) {
        m_window.setCurrentFile(m_window.files().path(most));
        auto *list = m_window.findChild<QListView *>(QStringLiteral("spriteList"));
        list->setCurrentIndex(list->model()->index(list->model()->rowCount() / 2, 0));
        settle();
        take(QStringLiteral("sprites"));
    }
    if (image) {
        m_window.setCurrentFile(m_window.files().path(image));
        settle();
        take(QStringLiteral("image"));
    }
}

void ScreenshotTour::showSounds(const QString &name)
{
    const Vela::ProjectFile *single = nullptr;
    const Vela::Sounds *most = nullptr;
    largest(Vela::Project::Sounds, most, single);
    const Vela::ProjectFile *const shown = most ? most : single;
    if (!shown)
        return;
    m_window.setCurrentFile(m_window.files().path(shown));
    if (most) {
        auto *list = m_window.findChild<QTreeView *>(QStringLiteral("soundList"));
        list->setCurrentIndex(list->model()->index(list->model()->rowCount() / 2, 0));
    }
    settle();
    if (const SoundView *view = m_window.view().soundView()) {
        const unsigned int frames = view->waveform()->audio().info().samples;
        view->waveform()->select(frames / 5, frames / 2);
    }
    settle();
    take(name);
}

/// Finds the file with the most items of a type, and a file that is one item.
template <typename Items>
void ScreenshotTour::largest(int type, const Items *&most, const Vela::ProjectFile *&single)
{
    const QList<Vela::Project *> projects = sortedProjects(parentProject());
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = project->filesByType(type);
        for (const Vela::ProjectFile *file : files) {
            const auto *items = dynamic_cast<const Items *>(file);
            if (!items)
                single = file;
            else if (!most || items->count() > most->count())
                most = items;
        }
    }
}

void ScreenshotTour::showMessage()
{
    editProperty(QStringLiteral("project.kind"), QStringLiteral("cloud"));
    m_window.host().action("next_message")->trigger();
    settle();
    take(QStringLiteral("message"));
    m_window.host().action("undo")->trigger();
    settle();
}

void ScreenshotTour::showText()
{
    auto *structure = m_window.findChild<StructureDock *>(QStringLiteral("structureDock"));
    structure->raise();
    if (selectFile(Vela::Project::Main)) {
        structure->view()->expandAll();
        settle();
        take(QStringLiteral("structure"));
    }
    if (!selectFile(Vela::Project::Animations))
        return;
    structure->view()->expandAll();
    const QAbstractItemModel *model = structure->view()->model();
    if (model)
        Q_EMIT structure->view()->clicked(model->index(0, 0, model->index(1, 0)));
    settle();
    take(QStringLiteral("animations"));

    showEditing(*m_window.view().textEdit());
    m_window.findChild<ProjectDock *>(QStringLiteral("projectDock"))->raise();
}

void ScreenshotTour::showEditing(QPlainTextEdit &text)
{
    text.setFocus();
    goToPlace(text, lineWith(text, QStringLiteral("frame ")), 0);
    settle();
    take(QStringLiteral("property-panel"));
    m_window.host().action("code_fold_all")->trigger();
    settle();
    take(QStringLiteral("folded"));
    m_window.host().action("code_unfold_all")->trigger();

    text.moveCursor(QTextCursor::EndOfBlock);
    typeKeys(text, QStringLiteral("\nframe nobody : 8\nframe "));
    settle();
    take(QStringLiteral("completion"));
    typeKeys(text, QStringLiteral("\x1b"));
    showToolTip(text, lineWith(text, QStringLiteral("nobody")), 8);
    take(QStringLiteral("error"));
    QToolTip::hideText();
    while (text.document()->isModified())
        text.undo();
    takeDialog(QStringLiteral("snippet"), "code_snippet_insert");
    takeDialog(QStringLiteral("snippet-editor"), "code_snippet_edit");

    m_window.host().action("replace")->trigger();
    m_window.findChild<QLineEdit *>(QStringLiteral("findText"))->setText(QStringLiteral("body"));
    m_window.host().action("find_next")->trigger();
    m_window.findChild<QToolButton *>(QStringLiteral("findEverywhere"))->click();
    settle();
    take(QStringLiteral("find"));
    m_window.findChild<QWidget *>(QStringLiteral("findBar"))->hide();
    m_window.findChild<QWidget *>(QStringLiteral("messagesDock"))->raise();
}

// As a user would, for what only keys bring up.
void ScreenshotTour::typeKeys(QWidget &widget, const QString &keys)
{
    for (const QChar key : keys) {
        const bool isEscape = key == QLatin1Char('\x1b');
        const int code = isEscape      ? int(Qt::Key_Escape)
            : key == QLatin1Char('\n') ? int(Qt::Key_Return)
                                       : int(key.toUpper().unicode());
        const QString text = isEscape ? QString() : QString(key);
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
        QCoreApplication::sendEvent(&widget, &press);
        QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
        QCoreApplication::sendEvent(&widget, &release);
    }
}

void ScreenshotTour::showToolTip(QPlainTextEdit &text, int line, int column)
{
    QTextCursor place(text.document()->findBlockByNumber(line));
    place.setPosition(place.position() + column);
    const QPoint position = text.cursorRect(place).center();
    QHelpEvent help(QEvent::ToolTip, position, text.viewport()->mapToGlobal(position));
    QCoreApplication::sendEvent(text.viewport(), &help);
    settle();
}

int ScreenshotTour::lineWith(const QPlainTextEdit &text, const QString &words)
{
    return text.document()->find(words).blockNumber();
}

void ScreenshotTour::showDialogs()
{
    takeDialog(QStringLiteral("backups"), "restore");
    takeDialog(QStringLiteral("settings"), "settings", QString(), 2);
    takeDialog(QStringLiteral("colours"), "settings", QString(), 3);
    takeDialog(QStringLiteral("formats"), "settings", QString(), 4);
    takeDialog(QStringLiteral("shortcuts"), "settings", QString(), 6);
    takeDialog(QStringLiteral("command-palette"), "palette", QStringLiteral("re"));
    takeDialog(QStringLiteral("unsaved-question"), "close");
}

void ScreenshotTour::showDark()
{
    m_window.host().setOption(QStringLiteral("theme"), int(Theme::Dark));
    settle();
    take(QStringLiteral("dark"));
    showSounds(QStringLiteral("dark-sounds"));
    takeDialog(QStringLiteral("dark-shortcuts"), "settings", QString(), 6);
    m_window.host().setOption(QStringLiteral("theme"), int(Theme::OfSystem));
    m_window.commands().save();
}

void ScreenshotTour::take(const QString &name)
{
    QPixmap picture = m_window.screen()->grabWindow(0);
    if (picture.isNull()) {
        const QWidget *dialog = QApplication::activeModalWidget();
        picture = const_cast<QWidget *>(dialog ? dialog : &m_window)->grab();
    }
    const QString file = QStringLiteral("%1/%2-%3.png")
                             .arg(m_folder)
                             .arg(++m_count, 2, 10, QLatin1Char('0'))
                             .arg(name);
    if (!picture.save(file))
        m_errors.append(tr("%1: cannot be written").arg(file));
}

void ScreenshotTour::takeDialog(const QString &name, const char *action, const QString &typed,
                                int page)
{
    bool shown = false;
    QTimer::singleShot(SettleTime, this, [this, name, typed, page, &shown] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (!dialog)
            return;
        shown = true;
        if (auto *edit = dialog->findChild<QLineEdit *>())
            edit->setText(typed.isEmpty() ? edit->text() : typed);
        if (auto *pages = dialog->findChild<QListWidget *>(QStringLiteral("pageList")))
            pages->setCurrentRow(page);
        settle();
        take(name);
        static_cast<QDialog *>(dialog)->reject();
    });
    m_window.host().action(action)->trigger();
    settle();
    if (!shown)
        m_errors.append(tr("%1: no dialog came").arg(name));
}

void ScreenshotTour::makeBackup()
{
    const CopyResult result =
        m_window.commands().session()->backup(QStringLiteral("before-the-change"), nullptr);
    m_errors += result.errors;
}

void ScreenshotTour::editProperty(const QString &name, const QString &value)
{
    const Vela::Project *project = sortedProjects(parentProject()).last();
    m_window.setCurrentFile(m_window.files().path(project->mainFile()));
    auto *view = m_window.findChild<QTreeView *>(QStringLiteral("properties"));
    QAbstractItemModel *model = view->model();
    const QModelIndexList rows = model->match(model->index(0, PropertiesModel::NameColumn),
                                              Qt::DisplayRole, name, 1, Qt::MatchExactly);
    if (rows.isEmpty())
        m_errors.append(tr("%1: there is no such property").arg(name));
    else
        model->setData(rows.first().siblingAtColumn(PropertiesModel::ValueColumn), value);
    settle();
}

bool ScreenshotTour::selectFile(int type)
{
    const Vela::ProjectFile *file = nullptr;
    const QList<Vela::Project *> projects = sortedProjects(parentProject());
    for (const Vela::Project *project : projects) {
        if (const Vela::ProjectFile *first = project->file(type))
            file = first;
    }
    if (file)
        m_window.setCurrentFile(m_window.files().path(file));
    settle();
    return file;
}

const Vela::ParentProject &ScreenshotTour::parentProject()
{
    return *m_window.commands().session()->parent();
}

} // namespace Studio
