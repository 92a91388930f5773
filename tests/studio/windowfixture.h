// SPDX-License-Identifier: MIT
#pragma once

#include "frame/textcodecs.h"
#include "studio/host.h"
#include "studio/progress.h"
#include "studio/session/engineloader.h"
#include "studio/smallgame.h"
#include "studio/window/mainwindow.h"
#include "studio/window/messagesdock.h"
#include "studio/window/projectdock.h"
#include "studio/window/propertiesdock.h"
#include "support/dialoganswerer.h"

#include <QApplication>
#include <QBuffer>
#include <QTemporaryDir>
#include <QTreeView>
#include <QtTest>
#include <memory>

/// The program with its window, a folder of settings of its own and a copy of the meadow.
class WindowFixture
{
public:
    WindowFixture()
    {
        m_output.open(QIODevice::WriteOnly);
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config"))));
        const QString source = qEnvironmentVariable("VELA_SOURCE_DIR");
        SmallGame::write(meadow(), SmallGame::tree(source + QStringLiteral("/examples/meadow")));
        start();
    }

    ~WindowFixture()
    {
        stop();
    }

    void start()
    {
        host = std::make_unique<Studio::Host>(Studio::Folders());
        host->setOption(QStringLiteral("use_native_open"), false);
        // A slow machine would bring a dialog up that nobody answers.
        host->setProgressProvider(std::make_unique<Studio::ConsoleProgress>(
            m_output, Studio::ConsoleProgress::ErrorsOnly));
        Vela::TextCodecs::initialize();
        loader = std::make_unique<Studio::EngineLoader>(host->folders().extensionsFolder());
        window = std::make_unique<Studio::MainWindow>(*host);
        window->show();
    }

    void stop()
    {
        window.reset();
        loader.reset();
        host.reset();
    }

    QString path(const QString &name) const
    {
        return m_folder.filePath(name);
    }
    QString meadow() const
    {
        return path(QStringLiteral("meadow"));
    }
    QString inMeadow(const char *name) const
    {
        return meadow() + QLatin1Char('/') + QString::fromUtf8(name);
    }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return window->findChild<Widget *>(QLatin1String(name));
    }

    void trigger(const char *action) const
    {
        host->action(action)->trigger();
    }

    /// Types into a picker and takes its first row.
    static void pick(DialogAnswerer &dialogs, const QString &text)
    {
        dialogs.handle([text](QDialog *dialog) {
            auto *edit = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(edit, text);
            QTest::keyClick(edit, Qt::Key_Return);
        });
    }

    /// Opens the meadow, which shows its main file, and chooses files in the project tree.
    bool open(const QStringList &paths) const
    {
        if (!window->openProject(meadow()))
            return false;
        return std::all_of(paths.begin(), paths.end(),
                           [this](const QString &path) { return clickFile(path); });
    }

    /// Clicks the row of a file in the project tree.
    bool clickFile(const QString &name) const
    {
        auto *dock = find<Studio::ProjectDock>("projectDock");
        const QModelIndex index = dock->model().indexOf(name);
        if (!index.isValid())
            return false;
        dock->view()->scrollTo(index);
        click(dock->view(), index);
        return window->currentPath() == name;
    }

    /// Types a new value over a property of the current file.
    bool typeProperty(const QString &name, const QString &value) const
    {
        const auto *dock = find<Studio::PropertiesDock>("propertiesDock");
        QTreeView *view = dock->view();
        const QModelIndexList rows =
            view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, name);
        if (rows.isEmpty())
            return false;
        view->setCurrentIndex(rows.first().sibling(rows.first().row(), 1));
        view->edit(view->currentIndex());
        // The field of the value before may not be gone yet.
        const auto edits = view->viewport()->findChildren<QLineEdit *>();
        const auto edit = std::find_if(edits.begin(), edits.end(),
                                       [](const QLineEdit *field) { return field->isVisible(); });
        if (edit == edits.end())
            return false;
        (*edit)->selectAll();
        QTest::keyClicks(*edit, value);
        QTest::keyClick(*edit, Qt::Key_Return);
        QCoreApplication::processEvents(); // the value is taken behind the key
        return view->currentIndex().data(Qt::EditRole).toString() == value;
    }

    /// Presses a key where the focus is. Without a window manager nobody gives it back behind a
    /// dialog.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        window->activateWindow();
        QTRY_VERIFY(window->isActiveWindow() && QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    }

    static void click(QAbstractItemView *view, const QModelIndex &index)
    {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
    }

    static void doubleClick(QAbstractItemView *view, const QModelIndex &index)
    {
        click(view, index);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
    }

    std::unique_ptr<Studio::Host> host;
    std::unique_ptr<Studio::EngineLoader> loader;
    std::unique_ptr<Studio::MainWindow> window;

private:
    QTemporaryDir m_folder;
    QBuffer m_output;
};
