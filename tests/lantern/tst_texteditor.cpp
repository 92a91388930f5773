// SPDX-License-Identifier: MIT
#include "grammartext.h"
#include "lantern/completion.h"
#include "lantern/document.h"
#include "lantern/engine.h"
#include "lantern/nodepanel.h"
#include "lantern/options.h"

#include "code/rootcode.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "editor/fileeditor.h"
#include "editor/propertyedit.h"
#include "editor/snippetmanager.h"
#include "frame/filesystemarchive.h"
#include "frame/textcodecs.h"
#include "project/messagelist.h"
#include "project/messages.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "support/dialoganswerer.h"
#include "support/recordinghost.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QXmlStreamReader>

using Lantern::Document;
using Lantern::NodePanel;

namespace {

QString sourceFolder()
{
    return qEnvironmentVariable("VELA_SOURCE_DIR") + QStringLiteral("/engines/lantern");
}

/// Finds the field beside a label; null without one that is in sight of its form.
template <typename Field>
Field *fieldOf(const QWidget *form, const char *label)
{
    const QList<QLabel *> labels = form->findChildren<QLabel *>();
    for (const QLabel *const candidate : labels) {
        auto *const field = qobject_cast<Field *>(candidate->buddy());
        if (candidate->text() == utf8(label) && field && field->isVisibleTo(form))
            return field;
    }
    return nullptr;
}

/// Finds a part of a field of several numbers.
QAbstractSpinBox *partOf(const QWidget *form, const char *label, int index)
{
    const auto *const field = fieldOf<QWidget>(form, label);
    return field ? field->findChildren<QAbstractSpinBox *>().value(index) : nullptr;
}

void retype(QWidget *field, const char *text)
{
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, utf8(text));
}

bool write(const QString &name, const QByteArray &data)
{
    QFile file(name);
    return QDir().mkpath(QFileInfo(name).path()) && file.open(QIODevice::WriteOnly)
        && file.write(data) == data.size();
}

/// A text editor with its workspace, as a host shows it.
class Desk
{
public:
    explicit Desk(Scope scope, const char *text)
        : workspace(host)
        , document(new Document(scope))
    {
        editors = extension.createEditors({&workspace});
        editor = static_cast<Vela::FileEditor *>(editors.at(scope == Scope::Motion ? 1 : 0));
        document->fromString(utf8(text));
        editor->setCurrentFile(document);
        editor->activate();
        panel = dynamic_cast<NodePanel *>(host.extraEditor);
        panel->activate();
        form = panel->property("widget").value<QWidget *>();
        form->show();
    }
    ~Desk()
    {
        editor->setCurrentFile(nullptr);
        if (document)
            document->release();
        qDeleteAll(editors);
    }

    QString line(int number) const
    {
        return document->findBlockByNumber(number).text();
    }
    void goTo(int number)
    {
        workspace.goTo(unsigned(number), 0);
        panel->activate();
        // Layouts show new widgets behind their making.
        QCoreApplication::processEvents();
    }

    RecordingHost host;
    Lantern::EngineExtension extension;
    Vela::CodeWorkspace workspace;
    QList<Vela::Editor *> editors;
    Vela::FileEditor *editor;
    Document *document;
    NodePanel *panel;
    QWidget *form;
};

} // namespace

Q_DECLARE_METATYPE(Lantern::Scope)

class tst_TextEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void snippetsAreValid_data();
    void snippetsAreValid();
    void aSnippetWithValues();
    void filesAreInstalled();
    void completerWordsAreValid();
    void framePropertiesAreWritten();
    void boxesOfAFrame();
    void sectionPropertiesAreWritten();
    void typedValuesStay();
    void panelFollowsTextAndCursor();
    void panelComesAndGoes();
    void optionsTakeEffect();
    void warningsCanBeSwitchedOff();
};

void tst_TextEditor::initTestCase()
{
    Vela::TextCodecs::initialize();
}

void tst_TextEditor::snippetsAreValid_data()
{
    QTest::addColumn<Scope>("scope");
    QTest::addColumn<QString>("above");
    QTest::newRow("animation") << Scope::Motion << QString();
    QTest::newRow("attack") << Scope::Motion << QStringLiteral("[animation a]\n");
    QTest::newRow("boxes") << Scope::Motion << QStringLiteral("[animation a]\n");
    QTest::newRow("evening") << Scope::Script << QString();
    QTest::newRow("include") << Scope::Motion << QString();
    QTest::newRow("project") << Scope::Project << QString();
    QTest::newRow("script") << Scope::Script << QString();
    QTest::newRow("walk") << Scope::Motion << QString();
    QCOMPARE(QDir(sourceFolder() + QStringLiteral("/snippets")).entryList(QDir::Files).size(), 8);
}

/// Gives the text of a snippet whose dialog \a fill filled in.
QString snippetText(RecordingHost &host, const QString &name,
                    const std::function<void(QDialog *)> &fill)
{
    Vela::SnippetManager &manager = *Vela::SnippetManager::instance();
    manager.load(sourceFolder() + QStringLiteral("/snippets"));
    DialogAnswerer answerer;
    answerer.handle([&fill](QDialog *dialog) {
        fill(dialog);
        dialog->accept();
    });
    for (int i = 0; i < manager.rowCount(); ++i) {
        if (manager.name(unsigned(i)) == name)
            return manager.text(host, unsigned(i)).remove(QStringLiteral("CURSOR"));
    }
    return QString();
}

void tst_TextEditor::snippetsAreValid()
{
    QFETCH(Scope, scope);
    QFETCH(QString, above);
    RecordingHost host;
    const QString code =
        snippetText(host, QString::fromUtf8(QTest::currentDataTag()), [](QDialog *) {});
    QVERIFY(!code.isEmpty());
    QVERIFY2(!code.contains(QLatin1Char('@')) || code.startsWith(QLatin1String("@include")),
             qPrintable(code));
    const Text text(scope, above + code);
    QVERIFY(!text.root()->childs().isEmpty() || code.startsWith(QLatin1String("@include")));
    for (const Found &found : messagesOf(text)) {
        QVERIFY2(found.place.startsWith(QLatin1Char('W')),
                 qPrintable(found.place + found.message + code));
    }
}

void tst_TextEditor::aSnippetWithValues()
{
    RecordingHost host;
    const QString code = snippetText(host, QStringLiteral("animation"), [](QDialog *dialog) {
        dialog->findChild<QComboBox *>(QStringLiteral("id"))->setCurrentIndex(1);
        dialog->findChild<QLineEdit *>(QStringLiteral("title"))->setText(QStringLiteral("Home"));
        dialog->findChild<QComboBox *>(QStringLiteral("frames"))->setCurrentIndex(2);
        dialog->findChild<QLineEdit *>(QStringLiteral("sprite"))->setText(QStringLiteral("walk"));
        dialog->findChild<QSpinBox *>(QStringLiteral("ticks"))->setValue(8);
    });
    QCOMPARE(code,
             QStringLiteral("[animation walk] \"Home\"\nframe \"walk-1\" : 8\n"
                            "frame \"walk-2\" : 8\nframe \"walk-3\" : 8\n\n"));
}

// They stand in the engine's folder of the build as they will when installed.
void tst_TextEditor::filesAreInstalled()
{
    const QString folder = QStringLiteral(LANTERN_FOLDER);
    const QStringList snippets = QDir(folder + QStringLiteral("/snippets")).entryList(QDir::Files);
    QCOMPARE(snippets, QDir(sourceFolder() + QStringLiteral("/snippets")).entryList(QDir::Files));
    Vela::CodeEditor editor;
    QVERIFY(editor.completerFromFile(folder + QStringLiteral("/completer.xml")));
}

void tst_TextEditor::completerWordsAreValid()
{
    struct Place
    {
        Scope scope;
        const char *above;
        const char *before; // of the prefix
    };
    const Place motion{Scope::Motion, "[motion]\n", ""};
    const Place stage{Scope::Project, "[stage]\n", ""};
    const Place script{Scope::Script, "[script a]\n", "at 5 "};
    const QMap<QString, Place> places = {
        {QStringLiteral("size="), stage},
        {QStringLiteral("scale="), stage},
        {QStringLiteral("requires="), {Scope::Project, "[project]\n", ""}},
        {QStringLiteral("angle="), {Scope::Motion, "[animation a]\n", "frame idle : 4, "}},
        {QStringLiteral("grid="), motion},
        {QStringLiteral("tint="), motion},
        {QStringLiteral("shadow="), motion},
        {QStringLiteral("origin="), motion},
        {QStringLiteral("gravity="), motion},
        {QStringLiteral("drift="), motion},
        {QStringLiteral("light="), script},
        {QStringLiteral("volume="), script},
        {QStringLiteral("speed="), script},
    };
    QFile file(sourceFolder() + QStringLiteral("/completer.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    QString prefix;
    QSet<QString> seen;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        if (reader.name() == QLatin1String("model"))
            prefix = reader.attributes().value(QStringLiteral("prefix")).toString();
        if (reader.name() != QLatin1String("word"))
            continue;
        QVERIFY2(places.contains(prefix), qPrintable(prefix));
        seen.insert(prefix);
        const Place place = places.value(prefix);
        const QString start = utf8(place.above) + utf8(place.before) + prefix + QLatin1Char(' ');
        const QString word = reader.attributes().value(QStringLiteral("value")).toString();
        const Text text(place.scope, start + word);
        QVERIFY2(messagesOf(text).isEmpty(), qPrintable(prefix + word));
        // Where the text has words of its own, these would never be seen.
        const Text open(place.scope, start);
        QTextCursor cursor(open.line(1));
        cursor.movePosition(QTextCursor::EndOfBlock);
        QVERIFY(Lantern::completionAt(cursor, open).words.isEmpty());
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(seen.size(), places.size());
}

void tst_TextEditor::framePropertiesAreWritten()
{
    Desk desk(Scope::Motion,
              "[animation a] \"A\"\nframe idle : 6, sparkle   # why\nframe b : 4, loop\n");
    desk.goTo(1);
    retype(fieldOf<QSpinBox>(desk.form, "Ticks"), "12");
    QCOMPARE(desk.line(1), QStringLiteral("frame idle : 12, sparkle   # why"));
    auto *const flip = fieldOf<QComboBox>(desk.form, "Flip");
    QCOMPARE(flip->currentText(), QStringLiteral("none"));
    QTest::keyClick(flip, Qt::Key_Down);
    QCOMPARE(desk.line(1), QStringLiteral("frame idle : 12, sparkle, flip = h   # why"));
    desk.document->undo();
    QCOMPARE(desk.line(1), QStringLiteral("frame idle : 12, sparkle   # why"));
    desk.document->redo();
    retype(partOf(desk.form, "Offset", 1), "-3");
    retype(partOf(desk.form, "Scale", 0), "1.5");
    retype(fieldOf<QComboBox>(desk.form, "Sprite"), "the ghost");
    QCOMPARE(desk.line(1),
             QStringLiteral(
                 "frame \"the ghost\" : 12, sparkle, flip = h, y = -3, scale = 1.5 x 1   # why"));
    // The animation has one loop point.
    QTest::mouseClick(fieldOf<QCheckBox>(desk.form, "Loop"), Qt::LeftButton, {}, QPoint(4, 4));
    QVERIFY(desk.line(1).contains(QStringLiteral("loop")));
    QCOMPARE(desk.line(2), QStringLiteral("frame b : 4"));
    QTest::mouseClick(fieldOf<QCheckBox>(desk.form, "Forever"), Qt::LeftButton, {}, QPoint(4, 4));
    QVERIFY(desk.line(1).startsWith(QStringLiteral("frame \"the ghost\" : forever,")));
    desk.goTo(0);
    retype(fieldOf<QLineEdit>(desk.form, "Title"), "B");
    QCOMPARE(desk.line(0), QStringLiteral("[animation a] \"B\""));
}

void tst_TextEditor::boxesOfAFrame()
{
    Desk desk(Scope::Motion,
              "[animation a]\n  body 1 2 3 4 # b\n  attack 5 6 7 8\nframe idle : 6\n");
    desk.goTo(3);
    const QList<QLabel *> labels = desk.form->findChildren<QLabel *>();
    QVector<QWidget *> areas;
    for (const QLabel *const label : labels) {
        if (label->text() == QLatin1String("Area"))
            areas.append(label->buddy());
    }
    // Attack boxes stand first.
    QCOMPARE(areas.size(), 2);
    retype(areas.at(1)->findChildren<QSpinBox *>().at(2), "9");
    QCOMPARE(desk.line(1), QStringLiteral("  body 1 2 9 4 # b"));
    desk.goTo(2);
    retype(partOf(desk.form, "Depth", 1), "4");
    QCOMPARE(desk.line(2), QStringLiteral("  attack 5 6 7 8 depth 0 4"));
}

void tst_TextEditor::sectionPropertiesAreWritten()
{
    Desk desk(Scope::Project,
              "[project]\nname = A # n\n\n[stage]\n\n[files]\nsprites = a.png\nsprites = b.png\n");
    desk.goTo(1);
    // What the text does not set shows its default.
    auto *const kind = fieldOf<QComboBox>(desk.form, "kind");
    QCOMPARE(kind->currentText(), QStringLiteral("shared"));
    QTest::keyClick(kind, Qt::Key_Home);
    QCOMPARE(desk.document->toString().left(40),
             QStringLiteral("[project]\nname = A # n\nkind = character\n"));
    retype(fieldOf<QLineEdit>(desk.form, "name"), "#B");
    QCOMPARE(desk.line(1), QStringLiteral("name = \"#B\" # n"));

    desk.goTo(4);
    QCOMPARE(static_cast<QSpinBox *>(partOf(desk.form, "size", 0))->value(), 320);
    retype(partOf(desk.form, "size", 1), "200");
    QCOMPARE(desk.line(5), QStringLiteral("size = 320 x 200"));
    desk.goTo(7);
    QVERIFY(fieldOf<QWidget>(desk.form, "sprites 1"));
    retype(fieldOf<QWidget>(desk.form, "sprites 2")->findChild<QLineEdit *>(), "c.png");
    QCOMPARE(desk.line(9), QStringLiteral("sprites = c.png"));
}

// What the text cannot say stays in its field, and the text stays as it is.
void tst_TextEditor::typedValuesStay()
{
    Desk desk(Scope::Project, "[project]\nrequires = 1.0\n");
    desk.goTo(1);
    auto *const version = fieldOf<QLineEdit>(desk.form, "requires");
    QTest::keyClick(version, Qt::Key_End);
    QTest::keyClick(version, Qt::Key_Backspace);
    QCOMPARE(desk.line(1), QStringLiteral("requires = 1.0"));
    desk.panel->activate();
    QCOMPARE(version->text(), QStringLiteral("1."));
    QTest::keyClicks(version, QStringLiteral("5"));
    QCOMPARE(desk.line(1), QStringLiteral("requires = 1.5"));
    desk.panel->activate();
    QCOMPARE(version->text(), QStringLiteral("1.5"));
    QCOMPARE(version->cursorPosition(), 3);
    QCOMPARE(fieldOf<QLineEdit>(desk.form, "requires"), version);
    // Another place, or another change, and the text is what counts.
    QTest::keyClick(version, Qt::Key_Backspace);
    desk.document->undo();
    desk.panel->activate();
    QVERIFY(version->text() != QLatin1String("1."));
}

void tst_TextEditor::panelFollowsTextAndCursor()
{
    Desk desk(Scope::Motion, "# x\n[animation a]\nframe idle : 6\nframe b : 7\n");
    QVERIFY(!fieldOf<QSpinBox>(desk.form, "Ticks"));
    desk.workspace.goTo(2, 0);
    const auto ticks = [&desk] {
        const auto *const field = fieldOf<QSpinBox>(desk.form, "Ticks");
        return field ? field->value() : -2;
    };
    QTRY_COMPARE(ticks(), 6);
    // One form serves all frames.
    const auto *const field = fieldOf<QSpinBox>(desk.form, "Ticks");
    desk.workspace.goTo(3, 0);
    QTRY_COMPARE(ticks(), 7);
    QCOMPARE(fieldOf<QSpinBox>(desk.form, "Ticks"), field);
    QTest::keyClick(desk.workspace.editor(), Qt::Key_End);
    QTest::keyClicks(desk.workspace.editor(), QStringLiteral("5"));
    QTRY_COMPARE(ticks(), 75);
    QTest::keyClicks(desk.workspace.editor(), QStringLiteral(" :"));
    QTRY_COMPARE(ticks(), -2);
}

void tst_TextEditor::panelComesAndGoes()
{
    Desk desk(Scope::Motion, "[animation a]\nframe idle : 6\n");
    desk.goTo(1);
    QVERIFY(fieldOf<QSpinBox>(desk.form, "Ticks"));
    desk.editor->setCurrentFile(nullptr);
    desk.document->release();
    desk.document = nullptr;
    desk.panel->activate();
    QVERIFY(!fieldOf<QSpinBox>(desk.form, "Ticks"));
    desk.editor->deactivate();
    QCOMPARE(desk.host.extraEditor, nullptr);
}

void tst_TextEditor::optionsTakeEffect()
{
    RecordingHost host;
    auto engine = std::make_unique<Lantern::Engine>();
    QWidget page;
    engine->registerCustomOptions(&page);
    auto *const form = page.findChild<Vela::PropertyEdit *>();
    QVERIFY(form && page.layout());
    page.show();
    auto *const author = fieldOf<QLineEdit>(&page, "Author");
    QTest::keyClicks(author, utf8("Z. # 1"));
    auto *const indent = fieldOf<QSpinBox>(&page, "Indent of boxes");
    QCOMPARE(indent->value(), 2);
    retype(indent, "3");
    QTest::mouseClick(fieldOf<QCheckBox>(&page, "Align actions"), Qt::LeftButton, {}, QPoint(4, 4));
    QTest::keyClick(fieldOf<QComboBox>(&page, "Words"), Qt::Key_Down);

    QTemporaryDir folder;
    QString error;
    const QString game =
        engine->createParentProject(folder.path(), QStringLiteral("Brook"), &error);
    QVERIFY2(!game.isEmpty(), qPrintable(error));
    for (const char *name : {"/game.lantern", "/brook/brook.lantern"}) {
        QFile file(game + utf8(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("name = Brook\nauthor = \"Z. # 1\"\n"));
    }

    // The page's end writes what was set; another engine reads it.
    delete form;
    engine = std::make_unique<Lantern::Engine>();
    QVERIFY(engine->load());
    QVERIFY(write(folder.path() + QStringLiteral("/p/p.lantern"),
                  "[project]\nname = P\n[animation a]\nBODY 1 2 3 4\nframe none:4\n"));
    std::unique_ptr<Vela::ParentProject> parent(
        engine->openParentProject(folder.path() + QStringLiteral("/p/p.lantern"), &error));
    QVERIFY2(parent, qPrintable(error));
    Vela::Project *const project = parent->openedProjects().first();
    auto *const document = dynamic_cast<Document *>(project->mainFile());
    document->formatLines(0, 4, false);
    QCOMPARE(document->findBlockByNumber(3).text(), QStringLiteral("   BODY 1 2 3 4"));
    QCOMPARE(Lantern::optionOf(*document, Lantern::OptionKey::aligns).toBool(), false);
    project->release();
}

void tst_TextEditor::warningsCanBeSwitchedOff()
{
    RecordingHost host;
    Lantern::Engine engine;
    QTemporaryDir folder;
    QVERIFY(write(folder.path() + QStringLiteral("/p/p.lantern"),
                  "[project]\nname = P\n[animation a]\nframe ghost : 4\n"));
    QString error;
    std::unique_ptr<Vela::ParentProject> parent(
        engine.openParentProject(folder.path() + QStringLiteral("/p/p.lantern"), &error));
    QVERIFY2(parent, qPrintable(error));
    host.parentProjects = {parent.get()};
    Vela::Project *const project = parent->openedProjects().first();
    const Vela::Messages *const messages = project->mainFile()->messages();
    QTRY_COMPARE(messages->count(Vela::Message::Warning), 1);
    QWidget page;
    engine.registerCustomOptions(&page);
    page.show();
    auto *const box = fieldOf<QCheckBox>(&page, "Missing names");
    for (const int expected : {0, 1}) {
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(4, 4));
        QCOMPARE(messages->count(Vela::Message::Warning), expected);
    }
    host.parentProjects.clear();
    project->release();
}

QTEST_MAIN(tst_TextEditor)
#include "tst_texteditor.moc"
