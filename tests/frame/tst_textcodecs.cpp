// SPDX-License-Identifier: MIT
#include "frame/textcodecs.h"

#include <QTest>
#include <QTextCodec>
#include <QTranslator>

#include <atomic>
#include <climits>
#include <thread>
#include <utility>
#include <vector>

using Vela::TextCodecs;

namespace {

// "a", the euro sign and a character beyond the basic plane.
const char mixedText[] = "a\xe2\x82\xac\xf0\x9f\x98\x80";

// No byte-order mark, no charset that the detector would name, and no UTF-8.
const char undetectable[] = "\x80\x81";

/// Makes a codec the one of the locale and puts the old one back.
class LocaleCodecGuard
{
public:
    explicit LocaleCodecGuard(const char *name)
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(name));
    }
    ~LocaleCodecGuard()
    {
        QTextCodec::setCodecForLocale(m_old);
    }

private:
    QTextCodec *m_old = QTextCodec::codecForLocale();
};

class PortugueseUnicode : public QTranslator
{
public:
    bool isEmpty() const override
    {
        return false;
    }

    QString translate(const char *, const char *source, const char *, int) const override
    {
        return qstrcmp(source, "Any language") == 0 ? QStringLiteral("Qualquer língua") : QString();
    }
};

/// A codec of the program's own, in Latin-1, under any name. Qt owns every codec that is made.
class StandInCodec : public QTextCodec
{
public:
    StandInCodec(const char *name, int mib)
        : m_name(name)
        , m_mib(mib)
    {
    }
    QByteArray name() const override
    {
        return m_name;
    }
    int mibEnum() const override
    {
        return m_mib;
    }

protected:
    QString convertToUnicode(const char *in, int length, ConverterState *) const override
    {
        return QString::fromLatin1(in, length);
    }
    QByteArray convertFromUnicode(const QChar *in, int length, ConverterState *) const override
    {
        return QString(in, length).toLatin1();
    }

private:
    QByteArray m_name;
    int m_mib;
};

// Not every build of Qt offers these. One with ICU lists only the MIBs that ICU knows, but takes
// the program's own codec for a MIB first, so they stand in for code pages of mainframes.
void offerRareCodecs()
{
    const std::pair<const char *, int> rare[] = {
        {"System", 2030},    {"KOI8-RU", 2033},   {"ISO-8859-16", 2034}, {"iscii-bng", 2035},
        {"iscii-dev", 2037}, {"iscii-gjr", 2038}, {"iscii-knd", 2039},   {"iscii-mlm", 2040},
        {"iscii-ori", 2041}, {"iscii-pnj", 2043}, {"iscii-tlg", 2044},   {"iscii-tml", 2045},
    };
    for (const auto &[name, mib] : rare)
        new StandInCodec(name, mib);
}

bool isListed(const char *name)
{
    const QByteArray first = TextCodecs::aliases(TextCodecs::index(name)).toLatin1();
    return (", " + first + ", ").toLower().contains(", " + QByteArray(name).toLower() + ", ");
}

QByteArray detectedName(const QByteArray &data)
{
    int codec = -1;
    TextCodecs::stringFromData(data, &codec);
    return TextCodecs::name(codec);
}

} // namespace

class TestTextCodecs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void everyCodecOfQtIsListed();
    void displayNamesRise();
    void namesSelectTheFamily_data();
    void namesSelectTheFamily();
    void otherCodecsAreUnknown_data();
    void otherCodecsAreUnknown();
    void textsAreTranslatedAtTheCall();
    void indexTakesAnyNameInAnyCase();
    void indexOutsideTheListIsHarmless();
    void encodingIsDetected_data();
    void encodingIsDetected();
    void undetectedDataFallsBack();
    void chosenCodecConvertsBothWays_data();
    void chosenCodecConvertsBothWays();
    void chosenCodecOutweighsTheData();
    void capitalsSurviveEveryCodec();
    void threadsConvertAtOnce();
    void furtherInitializeListsTheSame();
};

void TestTextCodecs::initTestCase()
{
    offerRareCodecs();
    QCOMPARE(TextCodecs::count(), 0);
    QCOMPARE(TextCodecs::index("UTF-8"), 0);
    QCOMPARE(TextCodecs::stringToData(QStringLiteral("é"), 0), QByteArray("\xc3\xa9"));
    TextCodecs::initialize();
}

void TestTextCodecs::cleanup()
{
    TextCodecs::setDefaultCodec(0);
}

void TestTextCodecs::everyCodecOfQtIsListed()
{
    const QList<int> mibs = QTextCodec::availableMibs();
    QCOMPARE(TextCodecs::count(), mibs.size());
    for (int mib : mibs) {
        const QTextCodec *codec = QTextCodec::codecForMib(mib);
        const int index = TextCodecs::index(codec->name().constData());
        QCOMPARE(TextCodecs::name(index), codec->name());
        const QByteArrayList names = QByteArrayList{codec->name()} + codec->aliases();
        QCOMPARE(TextCodecs::aliases(index), QString::fromLatin1(names.join(", ")));
    }
}

void TestTextCodecs::displayNamesRise()
{
    const QStringList order = {
        QStringLiteral("System default"),
        QStringLiteral("Baltic"),
        QStringLiteral("Central European"),
        QStringLiteral("Chinese (Simplified)"),
        QStringLiteral("Chinese (Traditional)"),
        QStringLiteral("Cyrillic"),
        QStringLiteral("Hebrew"),
        QStringLiteral("Japanese"),
        QStringLiteral("Korean"),
        QStringLiteral("Latin/Arabic"),
        QStringLiteral("Latin/Baltic"),
        QStringLiteral("Latin/Bengali"),
        QStringLiteral("Latin/Celtic"),
        QStringLiteral("Latin/Cyrillic"),
        QStringLiteral("Latin/Devanagari"),
        QStringLiteral("Latin/Eastern European"),
        QStringLiteral("Latin/Greek"),
        QStringLiteral("Latin/Gujarati"),
        QStringLiteral("Latin/Gurmukhī"),
        QStringLiteral("Latin/Hebrew"),
        QStringLiteral("Latin/Kannada"),
        QStringLiteral("Latin/Malayalam"),
        QStringLiteral("Latin/Nordic"),
        QStringLiteral("Latin/North European"),
        QStringLiteral("Latin/Odia"),
        QStringLiteral("Latin/South European"),
        QStringLiteral("Latin/South-Eastern European"),
        QStringLiteral("Latin/Tamil"),
        QStringLiteral("Latin/Telugu"),
        QStringLiteral("Latin/Thai"),
        QStringLiteral("Latin/Turkish"),
        QStringLiteral("Latin/Western European"),
        QStringLiteral("Modern Greek"),
        QStringLiteral("Tamil"),
        QStringLiteral("Unicode"),
        QStringLiteral("Vietnamese"),
        QStringLiteral("Western European"),
        QStringLiteral("Unknown"),
    };
    int last = 0;
    for (int i = 0; i < TextCodecs::count(); ++i) {
        const int place = order.indexOf(TextCodecs::displayName(i));
        QVERIFY2(place >= last, TextCodecs::name(i).constData());
        last = place;
    }
}

void TestTextCodecs::namesSelectTheFamily_data()
{
    QTest::addColumn<QString>("displayName");
    QTest::addColumn<QString>("languages"); // "*" stands for the rest of a long list
    const auto row = [](const char *name, const char *displayName, const char *languages) {
        QTest::newRow(name) << QString::fromUtf8(displayName) << QString::fromUtf8(languages);
    };
    row("System", "System default", "System");
    row("windows-1257", "Baltic",
        "Estonian, Latvian, Lithuanian, Latgalian, (also supports Polish*");
    row("windows-1250", "Central European", "Czech, Polish, Slovak, Hungarian, Slovene*");
    row("GBK", "Chinese (Simplified)", "Chinese (Simplified)");
    row("GB18030", "Chinese (Simplified)", "Chinese (Simplified)");
    row("Big5", "Chinese (Traditional)", "Chinese (Traditional)");
    row("Big5-HKSCS", "Chinese (Traditional)", "Chinese (Traditional) - Hong Kong");
    row("windows-1251", "Cyrillic", "Russian, Ukrainian, Belarusian, Bulgarian*");
    row("IBM866", "Cyrillic", "Russian, Bulgarian");
    row("KOI8-R", "Cyrillic", "Russian, Bulgarian");
    row("KOI8-U", "Cyrillic", "Russian, Bulgarian, Ukrainian");
    row("KOI8-RU", "Cyrillic", "Russian, Belarusian, Bulgarian, Ukrainian");
    row("windows-1255", "Hebrew", "Hebrew, English");
    row("Shift_JIS", "Japanese", "Japanese");
    row("ISO-2022-JP", "Japanese", "Japanese");
    row("EUC-JP", "Japanese", "Japanese");
    row("windows-949", "Korean", "Korean");
    row("ISO-8859-6", "Latin/Arabic", "Arabic");
    row("windows-1256", "Latin/Arabic", "Arabic, Persian, Urdu, English*");
    row("ISO-8859-13", "Latin/Baltic", "Baltic languages");
    row("ISO-8859-14", "Latin/Celtic", "Irish, Manx, Scottish Gaelic, Welsh*");
    row("ISO-8859-5", "Latin/Cyrillic", "Russian, Bulgarian, Belarusian, Macedonian*");
    row("ISO-8859-2", "Latin/Eastern European", "Albanian, Bosnian, Croatian, Czech*");
    row("ISO-8859-7", "Latin/Greek", "Greek, English");
    row("ISO-8859-8", "Latin/Hebrew", "Hebrew, English");
    row("ISO-8859-10", "Latin/Nordic", "Nordic languages");
    row("ISO-8859-4", "Latin/North European", "Estonian, Latvian, Lithuanian, Greenlandic, Sámi");
    row("ISO-8859-3", "Latin/South European", "Maltese, Esperanto, Turkish, English, German");
    row("ISO-8859-16", "Latin/South-Eastern European", "Albanian, Gaj's Latin alphabet*");
    row("TIS-620", "Latin/Thai", "Thai, English");
    row("ISO-8859-9", "Latin/Turkish", "Turkish, English");
    row("windows-1254", "Latin/Turkish", "Turkish, English");
    row("ISO-8859-1", "Latin/Western European", "Afrikaans, Albanian, Breton, Catalan*");
    row("windows-1252", "Latin/Western European", "Afrikaans, Albanian, Breton, Catalan*");
    row("ISO-8859-15", "Latin/Western European", "Afrikaans, Albanian, Breton, Catalan*");
    row("windows-1253", "Modern Greek", "Greek, English, mathematical usage");
    row("UTF-8", "Unicode", "Any language");
    row("UTF-16", "Unicode", "Any language");
    row("UTF-32BE", "Unicode", "Any language");
    row("windows-1258", "Vietnamese", "Vietnamese, English, French, German*");
    row("IBM850", "Western European", "Italian, Spanish, Portuguese, French*");
    row("hp-roman8", "Western European", "Italian, Spanish, Portuguese, French*");
    row("macintosh", "Western European", "Italian, Spanish, Portuguese, French*");
    row("iscii-bng", "Latin/Bengali", "Bengali script");
    row("iscii-dev", "Latin/Devanagari", "Devanagari script");
    row("iscii-gjr", "Latin/Gujarati", "Gujarati script");
    row("iscii-knd", "Latin/Kannada", "Kannada script");
    row("iscii-mlm", "Latin/Malayalam", "Malayalam script");
    row("iscii-ori", "Latin/Odia", "Odia script");
    row("iscii-pnj", "Latin/Gurmukhī", "Gurmukhī script");
    row("iscii-tlg", "Latin/Telugu", "Telugu script");
    row("iscii-tml", "Latin/Tamil", "Tamil");
    row("TSCII", "Tamil", "Tamil");
}

void TestTextCodecs::namesSelectTheFamily()
{
    if (!isListed(QTest::currentDataTag()))
        QSKIP("This build of Qt does not offer the codec");
    QFETCH(QString, languages);
    const int index = TextCodecs::index(QTest::currentDataTag());
    QTEST(TextCodecs::displayName(index), "displayName");
    if (languages.endsWith(QLatin1Char('*')))
        QVERIFY(TextCodecs::languages(index).startsWith(languages.chopped(1)));
    else
        QCOMPARE(TextCodecs::languages(index), languages);
}

void TestTextCodecs::otherCodecsAreUnknown_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"US-ASCII", "UTF-7", "SCSU", "IBM437", "IBM852", "ISO-2022-KR"})
        QTest::newRow(name) << QByteArray(name);
}

void TestTextCodecs::otherCodecsAreUnknown()
{
    QFETCH(QByteArray, name);
    if (!isListed(name.constData()))
        QSKIP("This build of Qt does not offer the codec");
    const int index = TextCodecs::index(name.constData());
    QCOMPARE(TextCodecs::displayName(index), QStringLiteral("Unknown"));
    QCOMPARE(TextCodecs::languages(index), QStringLiteral("Unknown"));
}

void TestTextCodecs::textsAreTranslatedAtTheCall()
{
    const int utf8 = TextCodecs::index("UTF-8");
    PortugueseUnicode translation;
    QVERIFY(QCoreApplication::installTranslator(&translation));
    QCOMPARE(TextCodecs::languages(utf8), QStringLiteral("Qualquer língua"));
    QVERIFY(QCoreApplication::removeTranslator(&translation));
    QCOMPARE(TextCodecs::languages(utf8), QStringLiteral("Any language"));
}

void TestTextCodecs::indexTakesAnyNameInAnyCase()
{
    QCOMPARE(TextCodecs::name(TextCodecs::index("utf-8")), QByteArray("UTF-8"));
    QCOMPARE(TextCodecs::index("utf-8"), TextCodecs::index("UTF-8"));
    QCOMPARE(TextCodecs::name(TextCodecs::index("LATIN1")), QByteArray("ISO-8859-1"));
    QCOMPARE(TextCodecs::name(TextCodecs::index("sjis")), QByteArray("Shift_JIS"));
    for (const char *name : {"no such encoding", "UTF", "", static_cast<const char *>(nullptr)})
        QCOMPARE(TextCodecs::index(name), 0);
}

void TestTextCodecs::indexOutsideTheListIsHarmless()
{
    for (int index : {INT_MIN, -1, TextCodecs::count(), INT_MAX}) {
        QCOMPARE(TextCodecs::name(index), QByteArray());
        QCOMPARE(TextCodecs::displayName(index), QString());
        QCOMPARE(TextCodecs::languages(index), QString());
        QCOMPARE(TextCodecs::aliases(index), QString());
        QCOMPARE(TextCodecs::stringToData(QStringLiteral("é"), index), QByteArray("\xc3\xa9"));

        int codec = index;
        QCOMPARE(TextCodecs::stringFromData("\xc3\xa9", &codec), QStringLiteral("é"));
        QCOMPARE(TextCodecs::name(codec), QByteArray("UTF-8"));
    }
}

void TestTextCodecs::encodingIsDetected_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("name");
    const auto row = [](const char *tag, const char *hex, const char *text, const char *name) {
        QTest::newRow(tag) << QByteArray::fromHex(hex) << QString::fromUtf8(text)
                           << QByteArray(name);
    };
    // A mark decides alone: the detector would name UTF-16 and UTF-32 without a byte order.
    row("UTF-8 mark", "efbbbf61e282acf09f9880", mixedText, "UTF-8");
    row("UTF-16LE mark", "fffe6100ac203dd800de", mixedText, "UTF-16LE");
    row("UTF-16BE mark", "feff006120acd83dde00", mixedText, "UTF-16BE");
    row("UTF-32LE mark", "fffe000061000000ac20000000f60100", mixedText, "UTF-32LE");
    row("UTF-32BE mark", "0000feff00000061000020ac0001f600", mixedText, "UTF-32BE");
    row("mark alone", "fffe", "", "UTF-16LE");

    row("nothing", "", "", "UTF-8");
    row("ASCII", "3b20636f6d6d656e740a", "; comment\n", "UTF-8");
    row("UTF-8", "d092d181d0b520d181d187d0b0d181d182d0bbd0b8d0b2d18bd0b5", "Все счастливые",
        "UTF-8");
    const char japanese[] = "吾輩は猫である。名前はまだ無い。どこで生れたかとんと見当がつかぬ。";
    const char russian[] = "Все счастливые семьи похожи друг на друга";
    const char french[] =
        "Longtemps, je me suis couché de bonne heure. Parfois, à peine ma bougie éteinte, mes yeux";
    const char chinese[] = "道可道，非常道。名可名，非常名。";
    const char korean[] = "죽는 날까지 하늘을 우러러 한 점 부끄럼이 없기를";
    row("Shift_JIS",
        "8ce1947982cd944c82c582a082e9814296bc914f82cd82dc82be96b382a2814282c782b182c5"
        "90b682ea82bd82a982c682f182c68ca9939682aa82c282a982ca8142",
        japanese, "Shift_JIS");
    row("EUC-JP",
        "b8e3c7daa4cfc7ada4c7a4a2a4eba1a3ccbec1b0a4cfa4dea4c0ccb5a4a4a1a3a4c9a4b3a4c7"
        "c0b8a4eca4bfa4aba4c8a4f3a4c8b8abc5f6a4aca4c4a4aba4cca1a3",
        japanese, "EUC-JP");
    row("ISO-2022-JP",
        "1b24423863475a244f472d24472422246b21234c3e4130244f245e24404c3524242123244924"
        "3324474038246c243f242b244824732448382b4576242c2444242b244c21231b2842",
        japanese, "ISO-2022-JP");
    row("Windows-1251",
        "c2f1e520f1f7e0f1f2ebe8e2fbe520f1e5ecfce820efeef5eee6e820e4f0f3e320ede020e4f0"
        "f3e3e0",
        russian, "windows-1251");
    row("KOI8-R",
        "f7d3c520d3dec1d3d4ccc9d7d9c520d3c5cdd8c920d0cfc8cfd6c920c4d2d5c720cec120c4d2"
        "d5c7c1",
        russian, "KOI8-R");
    row("IBM866",
        "82e1a520e1e7a0e1e2aba8a2eba520e1a5aceca820afaee5aea6a820a4e0e3a320ada020a4e0"
        "e3a3a0",
        russian, "IBM866");
    row("ISO-8859-1",
        "4c6f6e6774656d70732c206a65206d65207375697320636f756368e920646520626f6e6e6520"
        "68657572652e20506172666f69732c20e0207065696e65206d6120626f7567696520e9746569"
        "6e74652c206d65732079657578",
        french, "ISO-8859-1");
    row("GB18030", "b5c0bfc9b5c0a3acb7c7b3a3b5c0a1a3c3fbbfc9c3fba3acb7c7b3a3c3fba1a3", chinese,
        "GB18030");
    row("Big5", "b944a569b944a141ab44b160b944a143a657a569a657a141ab44b160a657a143", chinese,
        "Big5");
    row("EUC-KR",
        "c1d7b4c220b3afb1eec1f620c7cfb4c3c0bb20bfecb7afb7af20c7d120c1a120baceb2f4b7b3"
        "c0cc20bef8b1e2b8a6",
        korean, "windows-949");
}

void TestTextCodecs::encodingIsDetected()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, name);
    int codec = -1;
    QTEST(TextCodecs::stringFromData(data, &codec), "text");
    QCOMPARE(TextCodecs::name(codec), name);
    QCOMPARE(TextCodecs::get(data)->name(), name);
}

void TestTextCodecs::undetectedDataFallsBack()
{
    const LocaleCodecGuard locale("KOI8-R");
    int codec = -1;
    QCOMPARE(TextCodecs::stringFromData(undetectable, &codec), QStringLiteral("─│"));
    QCOMPARE(TextCodecs::name(codec), QByteArray("KOI8-R"));

    TextCodecs::setDefaultCodec(TextCodecs::index("IBM850"));
    codec = -1;
    QCOMPARE(TextCodecs::stringFromData(undetectable, &codec), QStringLiteral("Çü"));
    QCOMPARE(TextCodecs::name(codec), QByteArray("IBM850"));
    QCOMPARE(detectedName("plain"), QByteArray("UTF-8"));

    for (int none : {0, -1, TextCodecs::count()}) {
        TextCodecs::setDefaultCodec(none);
        QCOMPARE(detectedName(undetectable), QByteArray("KOI8-R"));
    }
}

void TestTextCodecs::chosenCodecConvertsBothWays_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *hex, const char *text) {
        QTest::newRow(name) << QByteArray::fromHex(hex) << QString::fromUtf8(text);
    };
    row("UTF-8", "61e282acf09f9880", mixedText);
    row("UTF-16LE", "fffe6100ac203dd800de", mixedText);
    row("UTF-16BE", "feff006120acd83dde00", mixedText);
    row("UTF-32LE", "fffe000061000000ac20000000f60100", mixedText);
    row("UTF-32BE", "0000feff00000061000020ac0001f600", mixedText);
    row("windows-1250", "80", "€");
    row("windows-1252", "8020939c94", "€ “œ”");
    row("windows-1255", "f9ece5ed", "שלום");
    row("ISO-8859-7", "d9ecdde3e1", "Ωμέγα");
    row("ISO-8859-15", "a4a6", "€Š");
    row("KOI8-U", "b7d6c1cb", "Їжак");
    row("TIS-620", "e4b7c2", "ไทย");
    row("Shift_JIS", "8abf8e9ab6c5", "漢字ｶﾅ");
    row("Big5", "a4a4a4e5", "中文");
    row("GB18030", "d6d0cec4a2e3", "中文€");
    row("windows-949", "c7d1b1db", "한글");
    row("IBM037", "c885939396", "Hello");
}

void TestTextCodecs::chosenCodecConvertsBothWays()
{
    if (!isListed(QTest::currentDataTag()))
        QSKIP("This build of Qt does not offer the codec");
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    const int chosen = TextCodecs::index(QTest::currentDataTag());
    int codec = chosen;
    QCOMPARE(TextCodecs::stringFromData(data, &codec), text);
    QCOMPARE(codec, chosen);
    QCOMPARE(TextCodecs::stringToData(text, chosen), data);
}

void TestTextCodecs::chosenCodecOutweighsTheData()
{
    // Reloading with another encoding must use it even where the bytes say otherwise.
    int codec = TextCodecs::index("ISO-8859-1");
    QCOMPARE(TextCodecs::stringFromData("\xff\xfe\xc3\xa9", &codec), QStringLiteral("ÿþÃ©"));
    QCOMPARE(TextCodecs::name(codec), QByteArray("ISO-8859-1"));

    codec = TextCodecs::index("UTF-8");
    QCOMPARE(TextCodecs::stringFromData("a\xff", &codec), QStringLiteral("a\uFFFD"));
    QCOMPARE(TextCodecs::name(codec), QByteArray("UTF-8"));
}

void TestTextCodecs::capitalsSurviveEveryCodec()
{
    const QString text = QStringLiteral("FRAME 07");
    for (int i = 0; i < TextCodecs::count(); ++i) {
        int codec = i;
        const QByteArray data = TextCodecs::stringToData(text, i);
        QVERIFY2(TextCodecs::stringFromData(data, &codec) == text, TextCodecs::name(i).constData());
        QCOMPARE(TextCodecs::name(codec), TextCodecs::name(i));
    }
}

void TestTextCodecs::threadsConvertAtOnce()
{
    const QString text = QStringLiteral("Їжак");
    const int codec = TextCodecs::index("KOI8-U");
    std::atomic_int wrong = 0;
    std::vector<std::thread> savers;
    for (int i = 0; i < 4; ++i) {
        savers.emplace_back([&] {
            for (int j = 0; j < 500; ++j)
                wrong += TextCodecs::stringToData(text, codec) != "\xb7\xd6\xc1\xcb";
        });
    }
    for (int i = 0; i < TextCodecs::count(); ++i)
        wrong += TextCodecs::aliases(i).isEmpty();
    for (std::thread &saver : savers)
        saver.join();
    QCOMPARE(wrong.load(), 0);
}

void TestTextCodecs::furtherInitializeListsTheSame()
{
    const int count = TextCodecs::count();
    const int utf8 = TextCodecs::index("UTF-8");
    TextCodecs::initialize();
    QCOMPARE(TextCodecs::count(), count);
    QCOMPARE(TextCodecs::index("UTF-8"), utf8);
}

QTEST_GUILESS_MAIN(TestTextCodecs)
#include "tst_textcodecs.moc"
