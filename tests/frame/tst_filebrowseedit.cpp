// SPDX-License-Identifier: MIT
#include "frame/filebrowseedit.h"

#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

using Vela::FileBrowseEdit;

namespace {

/// Counts how often a folder is listed.
class ListedArchive : public MemoryArchive
{
public:
    QStringList entries(const QString &path, const QStringList &nameFilters, QDir::Filters filters,
                        QDir::SortFlags sort) const override
    {
        ++lists;
        return MemoryArchive::entries(path, nameFilters, filters, sort);
    }

    mutable int lists = 0;
};

} // namespace

class TestFileBrowseEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void startsEmpty();
    void forbiddenCharactersCannotBeTyped();
    void valueChangesAreSignalledOnce();
    void completerFollowsTheTypedFolder_data();
    void completerFollowsTheTypedFolder();
    void completionWritesTheWholePath();
    void filterChoosesTheFiles_data();
    void filterChoosesTheFiles();
    void folderIsReadOnlyWhenItChanges();
    void browseStoresAPathRelativeToTheBase_data();
    void browseStoresAPathRelativeToTheBase();
    void browseStartsAtTheCurrentFile_data();
    void browseStartsAtTheCurrentFile();
    void browseGivenUpKeepsTheValue();

private:
    QStringList completions(int role) const;
    void browse();
    QString makeFile(const QString &name);

    ListedArchive m_archive;
    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FileBrowseEdit> m_widget;
    QLineEdit *m_edit = nullptr;
};

void TestFileBrowseEdit::init()
{
    for (const char *name :
         {"/game/kim.def", "/game/Anim.txt", "/game/zoo.def", "/game/noextension",
          "/game/snd/hit.wav", "/game/Chars/Kim/walk.png", "/game/Chars/ken.def"})
        m_archive.put(QLatin1String(name), QByteArray());
    m_host = std::make_unique<RecordingHost>();
    m_folder = std::make_unique<QTemporaryDir>();
    m_widget = std::make_unique<FileBrowseEdit>();
    m_edit = m_widget->findChild<QLineEdit *>();
    m_widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_widget.get()));
    m_widget->activateWindow();
    m_widget->setFocus();
    QTRY_VERIFY(m_edit->hasFocus());
}

void TestFileBrowseEdit::cleanup()
{
    m_widget.reset();
    m_folder.reset();
    m_host.reset();
}

QStringList TestFileBrowseEdit::completions(int role) const
{
    const QAbstractItemModel *model = m_edit->completer()->model();
    QStringList result;
    for (int row = 0; row < model->rowCount(); ++row)
        result.append(model->index(row, 0).data(role).toString());
    return result;
}

void TestFileBrowseEdit::browse()
{
    QTest::mouseClick(m_widget->findChild<QToolButton *>(), Qt::LeftButton);
}

QString TestFileBrowseEdit::makeFile(const QString &name)
{
    const QString path = m_folder->filePath(name);
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) ? path : QString();
}

void TestFileBrowseEdit::startsEmpty()
{
    QVERIFY(m_widget->value().isEmpty());
    QVERIFY(m_widget->basePath().isEmpty());
    QCOMPARE(m_widget->filter(), QStringLiteral("*.*"));
    QCOMPARE(m_edit->minimumWidth(), 150);
    QCOMPARE(m_widget->findChild<QToolButton *>()->text(), QStringLiteral("..."));
    QCOMPARE(m_edit->completer()->completionMode(), QCompleter::UnfilteredPopupCompletion);
    QCOMPARE(m_edit->completer()->caseSensitivity(), Qt::CaseInsensitive);
    // Without a base there is no folder to offer names of.
    QVERIFY(completions(Qt::DisplayRole).isEmpty());
}

void TestFileBrowseEdit::forbiddenCharactersCannotBeTyped()
{
    QTest::keyClicks(m_edit, QStringLiteral("a<b>:c\"|?*d/e\\f g.x"));
    QCOMPARE(m_widget->value(), QStringLiteral("abcd/e\\f g.x"));
}

void TestFileBrowseEdit::valueChangesAreSignalledOnce()
{
    QSignalSpy changed(m_widget.get(), &FileBrowseEdit::valueChanged);
    m_widget->setValue(QStringLiteral("kim.def"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().first().toString(), QStringLiteral("kim.def"));
    m_widget->setValue(QStringLiteral("kim.def"));
    QCOMPARE(changed.size(), 1);
    QTest::keyClicks(m_edit, QStringLiteral("x"));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(m_widget->value(), QStringLiteral("kim.defx"));
}

void TestFileBrowseEdit::completerFollowsTheTypedFolder_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("completed");
    const auto row = [](const char *title, const char *base, const char *text, const char *shown,
                        const char *completed) {
        QTest::newRow(title) << QString::fromLatin1(base) << QString::fromLatin1(text)
                             << QString::fromLatin1(shown) << QString::fromLatin1(completed);
    };
    // Folders come first; a name without a dot is no "*.*".
    row("base", "/game", "", "Chars snd Anim.txt kim.def zoo.def",
        "Chars snd Anim.txt kim.def zoo.def");
    row("base with a separator", "/game/", "k", "Chars snd Anim.txt kim.def zoo.def",
        "Chars snd Anim.txt kim.def zoo.def");
    row("folder", "/game", "Chars/", "Kim ken.def", "Chars/Kim Chars/ken.def");
    row("name in a folder", "/game", "Chars/ke", "Kim ken.def", "Chars/Kim Chars/ken.def");
    row("two folders", "/game", "Chars/Kim/w", "walk.png", "Chars/Kim/walk.png");
    row("no such folder", "/game", "none/x", "", "");
}

void TestFileBrowseEdit::completerFollowsTheTypedFolder()
{
    QFETCH(QString, base);
    QFETCH(QString, text);
    m_widget->setBasePath(&m_archive, base);
    QTest::keyClicks(m_edit, text);
    QTEST(completions(Qt::DisplayRole).join(QLatin1Char(' ')), "shown");
    QTEST(completions(Qt::EditRole).join(QLatin1Char(' ')), "completed");
    QCOMPARE(m_widget->basePath(), base);

    // The same comes out if the base is set after the text.
    m_widget->setBasePath(nullptr, QString());
    m_widget->setBasePath(&m_archive, base);
    QTEST(completions(Qt::EditRole).join(QLatin1Char(' ')), "completed");

    MemoryArchive empty;
    m_widget->setBasePath(&empty, base);
    QVERIFY(completions(Qt::DisplayRole).isEmpty());
    m_widget->setBasePath(&m_archive, base);
    QTEST(completions(Qt::DisplayRole).join(QLatin1Char(' ')), "shown");
}

void TestFileBrowseEdit::completionWritesTheWholePath()
{
    m_widget->setBasePath(&m_archive, QStringLiteral("/game"));
    QTest::keyClicks(m_edit, QStringLiteral("Chars/KE"));
    QAbstractItemView *popup = m_edit->completer()->popup();
    QTRY_VERIFY(popup->isVisible());
    QCOMPARE(popup->currentIndex().data().toString(), QStringLiteral("ken.def"));
    QTest::keyClick(popup, Qt::Key_Return);
    QCOMPARE(m_widget->value(), QStringLiteral("Chars/ken.def"));
}

void TestFileBrowseEdit::filterChoosesTheFiles_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("files");
    const auto row = [](const char *filter, const char *files) {
        QTest::newRow(filter) << QString::fromLatin1(filter) << QString::fromLatin1(files);
    };
    row("*.def", "kim.def zoo.def");
    row("*.txt *.def", "Anim.txt kim.def zoo.def");
    row("*.txt;*.none", "Anim.txt");
    row("Definitions (*.def);;Texts (*.txt)", "Anim.txt kim.def zoo.def");
    row("Texts (*.txt);;*.none", "Anim.txt");
    row("*", "Anim.txt kim.def noextension zoo.def");
    row("", "Anim.txt kim.def noextension zoo.def");
}

void TestFileBrowseEdit::filterChoosesTheFiles()
{
    QFETCH(QString, filter);
    m_widget->setBasePath(&m_archive, QStringLiteral("/game"));
    m_widget->setFilter(filter);
    QCOMPARE(m_widget->filter(), filter);
    const QStringList names = completions(Qt::DisplayRole);
    QCOMPARE(names.mid(0, 2), (QStringList{QStringLiteral("Chars"), QStringLiteral("snd")}));
    QTEST(names.mid(2).join(QLatin1Char(' ')), "files");
}

// Each key would otherwise list a folder, which takes time on a slow store.
void TestFileBrowseEdit::folderIsReadOnlyWhenItChanges()
{
    m_widget->setBasePath(&m_archive, QStringLiteral("/game"));
    m_archive.lists = 0;
    m_widget->setBasePath(&m_archive, QStringLiteral("/game"));
    m_widget->setFilter(QStringLiteral("*.*"));
    QTest::keyClicks(m_edit, QStringLiteral("Chars"));
    QCOMPARE(m_archive.lists, 0);
    QTest::keyClicks(m_edit, QStringLiteral("/"));
    QVERIFY(m_archive.lists > 0);
}

void TestFileBrowseEdit::browseStoresAPathRelativeToTheBase_data()
{
    QTest::addColumn<QString>("base");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QString>("value");
    const QString file = QStringLiteral("game/spr/a.png");
    QTest::newRow("inside") << QStringLiteral("game") << file << QStringLiteral("spr/a.png");
    QTest::newRow("base with a separator")
        << QStringLiteral("game/") << file << QStringLiteral("spr/a.png");
    QTest::newRow("beside") << QStringLiteral("game/snd") << file << QStringLiteral("../spr/a.png");
}

void TestFileBrowseEdit::browseStoresAPathRelativeToTheBase()
{
    QFETCH(QString, base);
    QFETCH(QString, chosen);
    const QString file = makeFile(chosen);
    makeFile(QStringLiteral("game/snd/b.wav"));
    m_widget->setBasePath(nullptr, m_folder->filePath(base));
    QSignalSpy changed(m_widget.get(), &FileBrowseEdit::valueChanged);
    DialogAnswerer answerer;
    answerer.chooseFiles({file});
    browse();
    QTEST(m_widget->value(), "value");
    QCOMPARE(changed.size(), 1);
}

void TestFileBrowseEdit::browseStartsAtTheCurrentFile_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("folder");
    QTest::newRow("file") << QStringLiteral("spr/a.png") << QStringLiteral("game/spr");
    QTest::newRow("not there") << QStringLiteral("spr/none.png") << QStringLiteral("game");
    QTest::newRow("no text") << QString() << QStringLiteral("game");
}

void TestFileBrowseEdit::browseStartsAtTheCurrentFile()
{
    QFETCH(QString, value);
    QFETCH(QString, folder);
    makeFile(QStringLiteral("game/spr/a.png"));
    m_widget->setBasePath(nullptr, m_folder->filePath(QStringLiteral("game")));
    m_widget->setFilter(QStringLiteral("Images (*.png)"));
    m_widget->setValue(value);
    DialogAnswerer answerer;
    QString start;
    QStringList filters;
    answerer.handle([&](QDialog *dialog) {
        const auto *fileDialog = qobject_cast<QFileDialog *>(dialog);
        start = fileDialog->directory().absolutePath();
        filters = fileDialog->nameFilters();
        dialog->reject();
    });
    browse();
    QCOMPARE(start, m_folder->filePath(folder));
    QCOMPARE(filters, QStringList{QStringLiteral("Images (*.png)")});
}

void TestFileBrowseEdit::browseGivenUpKeepsTheValue()
{
    m_widget->setBasePath(nullptr, m_folder->path());
    m_widget->setValue(QStringLiteral("a.png"));
    QSignalSpy changed(m_widget.get(), &FileBrowseEdit::valueChanged);
    DialogAnswerer answerer;
    answerer.cancel();
    browse();
    QCOMPARE(m_widget->value(), QStringLiteral("a.png"));
    QVERIFY(changed.isEmpty());
}

QTEST_MAIN(TestFileBrowseEdit)

#include "tst_filebrowseedit.moc"
