// SPDX-License-Identifier: MIT
#include "frame/ftranslator.h"

#include <QTest>
#include <QTranslator>

#include <climits>

using Vela::FTranslator;

namespace {

/// Knows two texts only, both in the library's context.
class TwoTexts : public QTranslator
{
public:
    bool isEmpty() const override
    {
        return false;
    }

    QString translate(const char *context, const char *source, const char *, int) const override
    {
        if (qstrcmp(context, "Vela::FTranslator") != 0)
            return QString();
        if (qstrcmp(source, "Rulers") == 0)
            return QStringLiteral("Réguas");
        if (qstrcmp(source, "Show/Hide the Rulers") == 0)
            return QStringLiteral("Mostrar ou esconder as réguas");
        return QString();
    }
};

} // namespace

class TestFTranslator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsStandAtTheirIds_data();
    void textsStandAtTheirIds();
    void everyIdHasATextAndSomeATooltip();
    void unknownIdsAreEmpty();
    void installedTranslationsReplaceTheTexts();
};

void TestFTranslator::textsStandAtTheirIds_data()
{
    QTest::addColumn<int>("id");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    const auto row = [](int id, const char *text, const char *toolTip = "") {
        QTest::addRow("%d", id) << id << QString::fromUtf8(text) << QString::fromUtf8(toolTip);
    };
    row(0, "System");
    row(1, "System default");
    row(19, "Latin/Gurmukh\xc4\xab");
    row(38, "Unknown");
    row(39,
        "Estonian, Latvian, Lithuanian, Latgalian, (also supports Polish, Slovene, Swedish, "
        "Finnish, Norwegian, Danish, German, English, Rotokas, Hawaiian, Niuean, Samoan, "
        "Tokelauan, Tongan, Tuvaluan)");
    row(55,
        "Albanian, Bosnian, Croatian, Czech, German (missing uppercase \xe1\xba\x9e), Hungarian, "
        "Polish, Rotokas, Serbian Latin, Slovak, Slovene, Upper Sorbian, Lower Sorbian, Turkmen");
    row(59, "Estonian, Latvian, Lithuanian, Greenlandic, S\xc3\xa1mi");
    row(77, "Telugu script");
    row(78, "No document.");
    row(80,
        "Do you want to reload the file using the specified encoding?\n"
        "This will make the editor display characters using this encoding, otherwise characters "
        "will remain unchanged and only saved using this encoding.");
    row(81, "Code toolbar", "Show/Hide the code toolbar in all code editors");
    row(86, "Rulers", "Show/Hide the Rulers");
    row(90, "Code snippets");
    row(95, "Go to line...", "Go to the specifed line");
    row(102, "Unfold all coded blocks");
    row(105, "Encoding", "Selects the file encoding");
    row(117, "Save as...", "Save the palette as a file...");
    row(123, "Apply to the sprites", "Apply the current palette to the specified sprites");
    row(147, "Delete all Contact boxes of current animation",
        "Remove all Contact boxs of current animation");
    row(150, "Use these Contact boxes in all other instances of this frame");
    row(176, "OnionSkin", "Enable OnionSkin");
    row(192, "Add", "Add one or more sprites");
    row(203, "Exclusion");
    row(205, "Add", "Add a new layer");
    row(222, "Switch to the frame's sprite", "Switch to the sprite of the current frame");
    row(236, "Switch to the sprite palette",
        "Switch the current palette to the palette of the sprite");
    row(250, "Import from another project...",
        "Import one or more sounds from another opened project...");
    row(251, "Previous sound");
    row(276, "Organizer");
    row(294, "Emulator");
}

void TestFTranslator::textsStandAtTheirIds()
{
    QFETCH(int, id);
    QTEST(FTranslator::instance()->translate(id), "text");
    QTEST(FTranslator::instance()->toolTip(id), "toolTip");
}

void TestFTranslator::everyIdHasATextAndSomeATooltip()
{
    QVector<int> withToolTip;
    for (int id = 0; id <= 294; ++id) {
        QVERIFY2(!FTranslator::instance()->translate(id).isEmpty(),
                 qPrintable(QString::number(id)));
        if (!FTranslator::instance()->toolTip(id).isEmpty())
            withToolTip.append(id);
    }
    QCOMPARE(withToolTip.size(), 99);
    QCOMPARE(withToolTip.first(), 81);
    QCOMPARE(withToolTip.last(), 250);
}

void TestFTranslator::unknownIdsAreEmpty()
{
    for (int id : {INT_MIN, -1, 295, INT_MAX}) {
        QCOMPARE(FTranslator::instance()->translate(id), QString());
        QCOMPARE(FTranslator::instance()->toolTip(id), QString());
    }
    QCOMPARE(FTranslator::instance()->statusTip(86), QString());
}

void TestFTranslator::installedTranslationsReplaceTheTexts()
{
    TwoTexts translation;
    QVERIFY(QCoreApplication::installTranslator(&translation));
    QCOMPARE(FTranslator::instance()->translate(86), QStringLiteral("Réguas"));
    QCOMPARE(FTranslator::instance()->toolTip(86), QStringLiteral("Mostrar ou esconder as réguas"));
    QCOMPARE(FTranslator::instance()->translate(87), QStringLiteral("Guide lines"));

    QVERIFY(QCoreApplication::removeTranslator(&translation));
    QCOMPARE(FTranslator::instance()->translate(86), QStringLiteral("Rulers"));
}

QTEST_GUILESS_MAIN(TestFTranslator)
#include "tst_ftranslator.moc"
