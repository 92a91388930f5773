// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/window/filecontent.h"
#include "studio/window/filesavedialog.h"
#include "studio/window/picker.h"
#include "studio/window/settingsdialog.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QCheckBox>
#include <QColorDialog>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

using namespace Studio;

namespace {

const QString rowanPath = QStringLiteral("rowan/rowan.lantern");

} // namespace

class TestWindowParts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void modelsKeepTheirPromises();
    void paletteRanksCommands_data();
    void paletteRanksCommands();
    void extensionIsAdded_data();
    void extensionIsAdded();
    void fileGoesWhereTheUserSays_data();
    void fileGoesWhereTheUserSays();
    void contentIsWhatTheOpenFileHolds();
    void settingIsStoredAtOnce();
    void silencedQuestionComesBack();
    void shortcutConflictIsShown();
    void colorIsChosenAndGivenBack();
    void everyControlHasAName();

private:
    Vela::ProjectFile *openRowan();

    std::unique_ptr<WindowFixture> f;
};

void TestWindowParts::init()
{
    f = std::make_unique<WindowFixture>();
}

void TestWindowParts::cleanup()
{
    f.reset();
}

Vela::ProjectFile *TestWindowParts::openRowan()
{
    return f->window->openProject(f->meadow()) ? f->window->files().file(rowanPath) : nullptr;
}

void TestWindowParts::modelsKeepTheirPromises()
{
    const auto mode = QAbstractItemModelTester::FailureReportingMode::QtTest;
    const QAbstractItemModelTester tree(f->find<QTreeView>("projectTree")->model(), mode);
    const QAbstractItemModelTester messages(f->find<QTreeView>("messages")->model(), mode);
    const QAbstractItemModelTester properties(f->find<QTreeView>("properties")->model(), mode);
    QVERIFY(openRowan());
    QVERIFY(f->clickFile(rowanPath));
    f->window->commands().openClosedProject(
        closedProjects(*f->window->commands().session()->parent()).value(0));
    // A line in error is no property.
    const int before = f->find<QTreeView>("properties")->model()->rowCount();
    f->typeProperty(QStringLiteral("project.kind"), QStringLiteral("banana"));
    QCOMPARE(f->find<QTreeView>("properties")->model()->rowCount(), before - 1);
    const QAbstractItemModel *shown = f->find<QTreeView>("messages")->model();
    QTRY_COMPARE(shown->match(shown->index(0, 1), Qt::DisplayRole, rowanPath).size(), 1);
    f->trigger("undo");
    QTRY_COMPARE(shown->match(shown->index(0, 1), Qt::DisplayRole, rowanPath).size(), 0);
    f->window->commands().closeProject(rowanPath);
    QTRY_VERIFY(!f->window->files().file(rowanPath));
    QVERIFY(f->window->commands().close());
}

void TestWindowParts::paletteRanksCommands_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("best");
    const QStringList none;
    QTest::newRow("start of a word")
        << "re" << QStringList{QStringLiteral("Edit: Redo"), QStringLiteral("File: Share")};
    QTest::newRow("letters in order") << "fsv" << QStringList{QStringLiteral("File: Save")};
    QTest::newRow("letters out of order") << "vsf" << none;
    QTest::newRow("case") << "SAVE" << QStringList{QStringLiteral("File: Save")};
}

void TestWindowParts::paletteRanksCommands()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, best);
    QMap<int, QString> ranked;
    for (const QString &text : {QStringLiteral("File: Share"), QStringLiteral("Edit: Redo"),
                                QStringLiteral("File: Save")}) {
        const int rank = Picker::rank(text, typed);
        if (rank >= 0)
            ranked.insert(rank, text);
    }
    QCOMPARE(QStringList(ranked.values()), best);
}

void TestWindowParts::extensionIsAdded_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("result");
    QTest::newRow("missing") << "*.script"
                             << "/a/walk"
                             << "/a/walk.script";
    QTest::newRow("there") << "*.script"
                           << "/a/walk.script"
                           << "/a/walk.script";
    QTest::newRow("another") << "*.script"
                             << "/a/walk.txt"
                             << "/a/walk.txt.script";
    QTest::newRow("another case") << "*.script"
                                  << "/a/walk.SCRIPT"
                                  << "/a/walk.SCRIPT.script";
    QTest::newRow("several extensions") << "*.png *.bmp"
                                        << "/a/walk"
                                        << "/a/walk";
    QTest::newRow("no pattern") << ""
                                << "/a/walk"
                                << "/a/walk";
}

void TestWindowParts::extensionIsAdded()
{
    QFETCH(QString, pattern);
    QFETCH(QString, path);
    QTEST(FileSaveDialog::withExtension(path, pattern), "result");
}

void TestWindowParts::fileGoesWhereTheUserSays_data()
{
    QTest::addColumn<bool>("inside");
    QTest::addColumn<bool>("copy");
    QTest::newRow("inside the project") << true << false;
    QTest::newRow("outside as a copy") << false << true;
    QTest::newRow("outside for good") << false << false;
}

void TestWindowParts::fileGoesWhereTheUserSays()
{
    QFETCH(bool, inside);
    QFETCH(bool, copy);
    openRowan();
    Vela::ProjectFile *script =
        f->window->files().file(QStringLiteral("rowan/scripts/rowan.script"));
    QVERIFY(script);
    const QString before = script->fileName();
    const QString target =
        inside ? f->inMeadow("rowan/other.script") : f->path(QStringLiteral("other.script"));
    DialogAnswerer dialogs;
    dialogs.chooseFiles({target});
    if (!inside)
        dialogs.answer(copy ? QMessageBox::Yes : QMessageBox::No);
    Vela::FileSaver *saver = f->host->editorForFile(script, Vela::Project::Scripts);
    QVERIFY(saver);
    saver->saveFileAs(script);
    // Every line of a definition text ends in both characters when it is saved.
    QCOMPARE(SmallGame::readFile(target), SmallGame::readFile(before).replace("\n", "\r\n"));
    QCOMPARE(script->fileName(), copy ? before : target);
    if (!inside)
        QCOMPARE(dialogs.dialogs.last().defaultButton, QMessageBox::No);
}

void TestWindowParts::contentIsWhatTheOpenFileHolds()
{
    Vela::ProjectFile *rowan = openRowan();
    QVERIFY(rowan);
    const QString before = FileContent::of(*rowan).text;
    QVERIFY(f->clickFile(rowanPath));
    QVERIFY(f->typeProperty(QStringLiteral("project.author"), QStringLiteral("Somebody")));
    QVERIFY(FileContent::of(*rowan).text.contains(QLatin1String("author = Somebody")));
    QVERIFY(rowan->isModified());
    rowan->undo();
    QCOMPARE(FileContent::of(*rowan).text, before);

    const FileContent image =
        FileContent::of(*f->window->files().file(QStringLiteral("rowan/sprites/idle.png")));
    QCOMPARE(image.kind, FileContent::Image);
    const FileContent sound =
        FileContent::of(*f->window->files().file(QStringLiteral("rowan/sounds/step.wav")));
    QCOMPARE(sound.kind, FileContent::Sound);
    QCOMPARE(sound.format, QByteArray("WAV"));
    QCOMPARE(sound.device->size(), sound.size);
}

void TestWindowParts::settingIsStoredAtOnce()
{
    SettingsDialog dialog(*f->host, nullptr);
    dialog.show();
    dialog.showPage(1);
    auto *box = dialog.findChild<QCheckBox *>(QStringLiteral("enable_file_watcher"));
    QVERIFY(box && box->isVisible() && box->isChecked());
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
    const QSettings stored(f->host->settings().fileName(), QSettings::IniFormat);
    QCOMPARE(stored.value(QStringLiteral("enable_file_watcher")).toBool(), false);
}

void TestWindowParts::silencedQuestionComesBack()
{
    f->host->setOption(QStringLiteral("showmsg_reload_file"), 2);
    SettingsDialog dialog(*f->host, nullptr);
    dialog.show();
    dialog.showPage(3);
    auto *list = dialog.findChild<QTreeWidget *>(QStringLiteral("silencedQuestions"));
    QCOMPARE(list->topLevelItemCount(), 1);
    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("askAgain")), Qt::LeftButton);
    QCOMPARE(list->topLevelItemCount(), 0);
    QCOMPARE(f->host->option(QStringLiteral("showmsg_reload_file"), 1).toInt(), 0);
}

void TestWindowParts::shortcutConflictIsShown()
{
    SettingsDialog dialog(*f->host, nullptr);
    dialog.show();
    dialog.showPage(4);
    auto *list = dialog.findChild<QTreeWidget *>(QStringLiteral("shortcuts"));
    auto *search = dialog.findChild<QLineEdit *>(QStringLiteral("shortcutSearch"));
    QTest::keyClicks(search, QStringLiteral("reload"));
    const QList<QTreeWidgetItem *> found =
        list->findItems(QStringLiteral("Reload"), Qt::MatchExactly);
    QCOMPARE(found.size(), 1);
    QVERIFY(!found.first()->isHidden());
    QVERIFY(list->findItems(QStringLiteral("Quit"), Qt::MatchExactly).first()->isHidden());
    list->setCurrentItem(found.first());
    auto *keys = dialog.findChild<QKeySequenceEdit *>(QStringLiteral("shortcutKeys"));
    const auto *conflict = dialog.findChild<QLabel *>(QStringLiteral("shortcutConflict"));
    QVERIFY(conflict->text().isEmpty());
    QTest::keyClick(keys, Qt::Key_S, Qt::ControlModifier);
    QTRY_VERIFY(conflict->text().contains(QLatin1String("Save")));
    QTRY_COMPARE(f->host->action("reload")->shortcut(), QKeySequence(Qt::CTRL + Qt::Key_S));
}

void TestWindowParts::colorIsChosenAndGivenBack()
{
    QVERIFY(openRowan());
    const auto *text = f->find<QPlainTextEdit>("textView");
    const QColor standard = text->palette().color(QPalette::Base);
    SettingsDialog dialog(*f->host, nullptr);
    dialog.show();
    dialog.showPage(2);
    auto *list = dialog.findChild<QTreeWidget *>(QStringLiteral("colors"));
    auto *reset = dialog.findChild<QPushButton *>(QStringLiteral("resetColor"));
    list->setCurrentItem(list->findItems(QStringLiteral("Background"), Qt::MatchExactly).value(0));
    QVERIFY(list->currentItem() && !reset->isEnabled());
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *chooser) {
        qobject_cast<QColorDialog *>(chooser)->setCurrentColor(QColor(255, 250, 205));
        chooser->accept();
    });
    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("changeColor")),
                      Qt::LeftButton);
    QCOMPARE(text->palette().color(QPalette::Base), QColor(255, 250, 205));
    QCOMPARE(list->currentItem()->text(1), QStringLiteral("#fffacd"));
    QTest::mouseClick(reset, Qt::LeftButton);
    QCOMPARE(text->palette().color(QPalette::Base), standard);
    QVERIFY(!reset->isEnabled());
}

void TestWindowParts::everyControlHasAName()
{
    const auto nameless = [](const QWidget &window) {
        QStringList found;
        const QList<QWidget *> widgets = window.findChildren<QWidget *>();
        for (QWidget *widget : widgets) {
            const auto *face = QAccessible::queryAccessibleInterface(widget);
            // What is part of another control has the name of that.
            // Qt keeps a bar without tabs for the next panels that are put together.
            const auto *tabs = qobject_cast<const QTabBar *>(widget);
            if (widget->window() == &window && (widget->focusPolicy() & Qt::TabFocus)
                && !(tabs && tabs->count() == 0) && !widget->focusProxy() && face
                && !widget->objectName().startsWith(QLatin1String("qt_"))
                && face->text(QAccessible::Name).isEmpty())
                found.append(QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ')
                             + widget->objectName());
        }
        return found;
    };
    QVERIFY(openRowan());
    QCOMPARE(nameless(*f->window).join(QLatin1Char(';')), QString());
    const SettingsDialog dialog(*f->host, nullptr);
    QCOMPARE(nameless(dialog).join(QLatin1Char(';')), QString());
}

QTEST_MAIN(TestWindowParts)
#include "tst_windowparts.moc"
