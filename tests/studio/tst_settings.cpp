// SPDX-License-Identifier: MIT
#include "studio/colors.h"
#include "studio/folders.h"
#include "studio/settings.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPalette>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <memory>

using namespace Studio;

namespace {

// Relative luminance and contrast ratio after WCAG 2.1.
double luminance(const QColor &color)
{
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
        + 0.0722 * linear(color.blueF());
}

double contrast(const QColor &a, const QColor &b)
{
    const double high = std::max(luminance(a), luminance(b));
    const double low = std::min(luminance(a), luminance(b));
    return (high + 0.05) / (low + 0.05);
}

// The outermost band of the blocks round the cursor.
QColor outerBand(const QColor &base)
{
    const int step = base.value() < 129 ? 40 : -30;
    const auto channel = [step](int value) { return qBound(0, value + step, 255); };
    return QColor(channel(base.red()), channel(base.green()), channel(base.blue()));
}

class PaletteRestorer
{
public:
    ~PaletteRestorer()
    {
        QApplication::setPalette(before);
    }

private:
    QPalette before = QApplication::palette();
};

void useWindowColor(const QColor &color)
{
    QPalette palette;
    palette.setColor(QPalette::Window, color);
    QApplication::setPalette(palette);
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        folder = std::make_unique<QTemporaryDir>();
        settings = std::make_unique<Settings>(path("vela.ini"));
    }

    // The library asks for most settings without a default of its own.
    void unsetKeysHaveTheProgramsDefault_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("fallback");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("watcher") << "enable_file_watcher" << QVariant() << QVariant(true);
        QTest::newRow("native dialog") << "use_native_open" << QVariant() << QVariant(true);
        QTest::newRow("sorted") << "sort_file_names" << QVariant() << QVariant(true);
        QTest::newRow("parsing") << "parseCode" << QVariant() << QVariant(true);
        QTest::newRow("reload asks") << "showmsg_reload_file" << QVariant(1) << QVariant(0);
        QTest::newRow("discard asks") << "showmsg_discard" << QVariant(0) << QVariant(0);
        QTest::newRow("delete asks") << "confirm_delete" << QVariant(true) << QVariant(true);
        QTest::newRow("unknown") << "zoom_level" << QVariant(3) << QVariant(3);
        QTest::newRow("unknown, no fallback") << "zoom_level" << QVariant() << QVariant();
        QTest::newRow("empty key") << "" << QVariant(7) << QVariant(7);
    }

    void unsetKeysHaveTheProgramsDefault()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, fallback);
        QTEST(settings->value(key, fallback), "expected");
    }

    void valuesComeBackFromTheFileInTheirType()
    {
        settings->setValue(QStringLiteral("enable_file_watcher"), false);
        settings->setValue(QStringLiteral("group/zoom level"), 5);
        settings->setValue(QStringLiteral("opacity"), 0.25);
        settings->setValue(QStringLiteral("pfad"), QStringLiteral("/tmp/größe; a=b"));
        QVERIFY(contents(path("vela.ini")).contains("enable_file_watcher=false"));
        restart();
        QCOMPARE(settings->value(QStringLiteral("enable_file_watcher")), QVariant(false));
        QCOMPARE(settings->value(QStringLiteral("group/zoom level"), 1), QVariant(5));
        QCOMPARE(settings->value(QStringLiteral("opacity"), 1.0), QVariant(0.25));
        QCOMPARE(settings->value(QStringLiteral("pfad"), QString()),
                 QVariant(QStringLiteral("/tmp/größe; a=b")));
    }

    void aNumberThatIsNoneIsTheDefault()
    {
        write("vela.ini", "[General]\nshowmsg_discard=what\nsize=12px\n");
        restart();
        QCOMPARE(settings->value(QStringLiteral("showmsg_discard"), 0), QVariant(0));
        QCOMPARE(settings->value(QStringLiteral("size"), 10), QVariant(10));
    }

    void aNullValueTakesTheKeyAway()
    {
        QSignalSpy changed(settings.get(), &Settings::changed);
        settings->setValue(QStringLiteral("parseCode"), false);
        settings->setValue(QStringLiteral("parseCode"), false);
        QCOMPARE(changed.size(), 1);
        settings->setValue(QStringLiteral("parseCode"), QVariant());
        settings->setValue(QStringLiteral("parseCode"), QVariant());
        QCOMPARE(changed.size(), 2);
        QVERIFY(!settings->contains(QStringLiteral("parseCode")));
        QVERIFY(!contents(path("vela.ini")).contains("parseCode"));
        settings->setValue(QString(), 1);
        QCOMPARE(changed.size(), 2);
    }

    void aFileThatCannotBeWrittenIsTold()
    {
        Settings lost(path("vela.ini/none.ini"));
        write("vela.ini", "[General]\n");
        QSignalSpy failed(&lost, &Settings::writeFailed);
        lost.setValue(QStringLiteral("a"), 1);
        lost.setValue(QStringLiteral("b"), 1);
        QCOMPARE(failed.size(), 1);
        QCOMPARE(lost.value(QStringLiteral("b")), QVariant(1));
    }

    void silencedQuestionsAreListedAndAskAgain()
    {
        QCOMPARE(settings->silencedQuestions().size(), 0);
        settings->setValue(QStringLiteral("showmsg_reload_file"), 1);
        settings->setValue(QStringLiteral("showmsg_discard"), 2);
        settings->setValue(QStringLiteral("confirm_delete"), false);
        settings->setValue(QStringLiteral("showmsg_from_extension"), 2);
        settings->setValue(QStringLiteral("confirm_from_extension"), false);
        settings->setValue(QStringLiteral("showmsg_still_asking"), 0);
        settings->setValue(QStringLiteral("enable_file_watcher"), false);
        restart();

        QMap<QString, bool> answers;
        for (const SilencedQuestion &question : settings->silencedQuestions()) {
            QVERIFY(!question.text.isEmpty());
            answers.insert(question.key, question.answer);
        }
        const QMap<QString, bool> expected = {{QStringLiteral("showmsg_reload_file"), true},
                                              {QStringLiteral("showmsg_discard"), false},
                                              {QStringLiteral("confirm_delete"), true},
                                              {QStringLiteral("showmsg_from_extension"), false},
                                              {QStringLiteral("confirm_from_extension"), true}};
        QCOMPARE(answers, expected);

        for (const QString &key : answers.keys())
            settings->unsilence(key);
        QCOMPARE(settings->silencedQuestions().size(), 0);
        QCOMPARE(settings->value(QStringLiteral("confirm_from_extension"), true), QVariant(true));
        QCOMPARE(settings->value(QStringLiteral("showmsg_from_extension"), 1), QVariant(0));
        QCOMPARE(settings->value(QStringLiteral("enable_file_watcher")), QVariant(false));
    }

    void exportedSettingsComeBackWhole()
    {
        settings->setValue(QStringLiteral("color/line"), QStringLiteral("#ff102030"));
        settings->setValue(QStringLiteral("size"), QSize(3, 4));
        QString error;
        QVERIFY2(settings->exportTo(path("saved.ini"), &error), qPrintable(error));
        const QByteArray exported = contents(path("saved.ini"));

        settings->setValue(QStringLiteral("color/line"), QStringLiteral("#ffffffff"));
        settings->setValue(QStringLiteral("later"), true);
        QSignalSpy changed(settings.get(), &Settings::changed);
        QVERIFY2(settings->importFrom(path("saved.ini"), &error), qPrintable(error));
        QCOMPARE(contents(path("saved.ini")), exported);
        QStringList keys;
        for (const QList<QVariant> &arguments : qAsConst(changed))
            keys.append(arguments.first().toString());
        keys.sort();
        QCOMPARE(keys, QStringList({QStringLiteral("color/line"), QStringLiteral("later")}));
        restart();
        QCOMPARE(settings->value(QStringLiteral("color/line")),
                 QVariant(QStringLiteral("#ff102030")));
        QCOMPARE(settings->value(QStringLiteral("size")), QVariant(QSize(3, 4)));
        QVERIFY(!settings->contains(QStringLiteral("later")));
        QVERIFY(!settings->contains(QStringLiteral("VelaSettings/version")));
    }

    void foreignFilesAreNoSettings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("another program's") << QByteArray("[General]\nkey=1\n");
        QTest::newRow("a later form") << QByteArray("[VelaSettings]\nversion=99\n");
        QTest::newRow("no text") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    }

    void foreignFilesAreNoSettings()
    {
        QFETCH(QByteArray, bytes);
        settings->setValue(QStringLiteral("mine"), 1);
        write("other.ini", bytes);
        QString error;
        QVERIFY(!settings->importFrom(path("other.ini"), &error));
        QVERIFY(error.contains(path("other.ini")));
        QCOMPARE(settings->value(QStringLiteral("mine"), 0), QVariant(1));
    }

    void exportRefusesItsOwnFile()
    {
        settings->setValue(QStringLiteral("mine"), 1);
        const QByteArray before = contents(path("vela.ini"));
        QString error;
        QVERIFY(!settings->exportTo(path("../") + folder->path().section(QLatin1Char('/'), -1)
                                        + QStringLiteral("/vela.ini"),
                                    &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(contents(path("vela.ini")), before);
        QVERIFY(!settings->exportTo(path("vela.ini/there.ini"), &error));
    }

    void textIsReadableOnEveryBackgroundOfBothThemes_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void textIsReadableOnEveryBackgroundOfBothThemes()
    {
        QFETCH(bool, dark);
        const auto shade = [dark](const ColorInfo &info) {
            return QColor(dark ? info.dark : info.light);
        };
        QMap<QString, QColor> backs;
        for (const ColorInfo &back : Colors::table()) {
            const QString key = QLatin1String(back.key);
            if (back.role == ColorInfo::TextBackground)
                backs.insert(key, shade(back));
            if (key == QLatin1String("block_range"))
                backs.insert(QStringLiteral("outer band"), outerBand(shade(back)));
        }
        QVERIFY(backs.contains(QStringLiteral("outer band")));
        for (const ColorInfo &text : Colors::table()) {
            if (text.role != ColorInfo::Text)
                continue;
            for (auto back = backs.cbegin(); back != backs.cend(); ++back) {
                const double ratio = contrast(shade(text), back.value());
                QVERIFY2(ratio >= 4.5,
                         qPrintable(QStringLiteral("%1 on %2: %3")
                                        .arg(QLatin1String(text.key), back.key())
                                        .arg(ratio)));
            }
        }
    }

    void coloursFollowThePalette()
    {
        const PaletteRestorer restorer;
        const Colors colors(*settings);
        useWindowColor(Qt::white);
        const QColor onLight = colors.color(QStringLiteral("background"));
        useWindowColor(Qt::black);
        const QColor onDark = colors.color(QStringLiteral("background"));
        QVERIFY(onLight.lightness() > 200);
        QVERIFY(onDark.lightness() < 60);
        QCOMPARE(colors.format(QStringLiteral("paren_range")).background().color(),
                 colors.color(QStringLiteral("paren_range")));
        QVERIFY(!colors.color(QStringLiteral("nobody's")).isValid());
        QVERIFY(colors.format(QStringLiteral("nobody's")).isEmpty());
    }

    void theUsersColoursWinAndGoBack()
    {
        Colors colors(*settings);
        const QString key = QStringLiteral("keyword");
        const QTextCharFormat standard = colors.format(key);
        QCOMPARE(standard.fontWeight(), int(QFont::Bold));
        colors.setColor(key, QColor(1, 2, 3, 128));
        restart();
        Colors again(*settings);
        QCOMPARE(again.color(key), QColor(1, 2, 3, 128));
        QTextCharFormat own;
        own.setForeground(QColor(Qt::red));
        own.setBackground(QColor(Qt::yellow));
        own.setFontItalic(true);
        again.setFormat(key, own);
        QCOMPARE(again.format(key), own);
        settings->setValue(QStringLiteral("format/keyword"), QStringLiteral("bold nonsense"));
        QCOMPARE(again.format(key).foreground().color(), QColor(1, 2, 3, 128));
        again.resetFormat(key);
        again.setColor(key, QColor());
        QCOMPARE(again.format(key), standard);
    }

    void foldersAreFoundFromTheProgram()
    {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(folder->path()));
        const Folders folders;
        QCOMPARE(folders.userFolder(), folder->path() + QLatin1String("/Vela"));
        QVERIFY(folders.settingsFile().startsWith(folders.userFolder()));
        QVERIFY(QDir(folders.dataFolder()).exists());
        const QString above =
            QDir::cleanPath(QApplication::applicationDirPath() + QLatin1String("/.."));
        QCOMPARE(folders.libraryFolder(), above + QLatin1String("/share/vela"));
        QVERIFY(folders.extensionsFolder().startsWith(above));
        QVERIFY(folders.extensionsFolder().endsWith(QLatin1String("/vela/extensions")));
        qputenv("VELA_EXTENSIONS_PATH", "/some/where/../else/");
        QCOMPARE(folders.extensionsFolder(), QStringLiteral("/some/else"));
        qunsetenv("VELA_EXTENSIONS_PATH");
    }

    void portableFoldersStandBesideTheProgram()
    {
        const Folders folders(Folders::PortablePlace);
        QVERIFY(folders.isPortable());
        QVERIFY(folders.userFolder().startsWith(QApplication::applicationDirPath()));
        QVERIFY(QDir(folders.userFolder()).removeRecursively());
    }

private:
    QString path(const char *name) const
    {
        return folder->filePath(QLatin1String(name));
    }

    void write(const char *name, const QByteArray &bytes)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    void restart()
    {
        settings.reset();
        settings = std::make_unique<Settings>(path("vela.ini"));
    }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Settings> settings;
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
