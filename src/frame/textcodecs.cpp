// SPDX-License-Identifier: MIT
#include "frame/textcodecs.h"

#include "frame/ftranslator.h"

#include <QByteArrayList>
#include <QHash>
#include <QTextCodec>

#include <uchardet.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <vector>

namespace Vela {

namespace {

/// Texts of a family of encodings, by their ids in FTranslator, and the names of its members.
struct Family
{
    int displayId;
    int languageId;
    const char *names;
};

struct Record
{
    int mib;
    Family family;
    QList<QByteArray> names;
};

// An encoding belongs to the first family that has one of its names.
const Family families[] = {
    {1, 0, "System"},
    {2, 39, "Windows-1257,CP1257"},
    {3, 40, "Windows-1250,CP1250"},
    {4, 41, "GBK,GB2312,csGBK,CP936,MS936,Windows-936,GB18030,csGB18030"},
    {5, 42, "Big5,Big5-ETen,CP950"},
    {5, 43, "Big5-HKSCS"},
    {6, 44, "Windows-1251,CP1251"},
    {6, 45, "IBM866,CP866,csIBM866,KOI8-R,CP878,csKOI8R"},
    {6, 46, "KOI8-U,csKOI8U"},
    {6, 47, "KOI8-RU"},
    {7, 57, "Windows-1255,CP1255"},
    {8, 48, "Shift_JIS,SJIS,Windows-932,MS932,MS_Kanji,CP93,ISO-2022-JP,JIS7,EUC-JP,UJIS"},
    {9, 49, "Windows-949,MS949,EUC-KR,iso-ir-149,korean,CP949"},
    {10, 50, "ISO-8859-6,ISO-8859-6-I,ASMO-708,ECMA-114,csISOLatinArabic,iso-ir-127,arabic"},
    {10, 51, "Windows-1256,CP1256"},
    {11, 52, "ISO-8859-13,csISOLatin7,iso-ir-179,latin7"},
    {13, 53, "ISO-8859-14,iso-ir-199,iso-celtic,latin8"},
    {14, 54, "ISO-8859-5,csISOLatinCyrillic,cyrillic,iso-ir-144"},
    {16, 55, "ISO-8859-2,csISOLatin2,iso-ir-101,latin2,IBM1111"},
    {17, 56, "ISO-8859-7,ECMA-118,csISOLatinGreek,greek,greek8,iso-ir-126,ELOT_928"},
    {20, 57, "ISO-8859-8,ISO 8859-8-I,csISOLatinHebrew,iso-ir-138,hebrew"},
    {23, 58, "ISO-8859-10,ISO-8859-10:1992,csISOLatin6,iso-ir-157,latin6"},
    {24, 59, "ISO-8859-4,csISOLatin4,iso-ir-110,latin4"},
    {26, 60, "ISO-8859-3,csISOLatin3,iso-ir-109,latin3"},
    {27, 61, "ISO-8859-16,iso-ir-226,latin10"},
    {30, 62,
     "ISO 8859-11,ISO-8859-11,TIS-620,iso-ir-166,CP874,IBM874,Windows-874,MS874,CP1162,IBM1162"},
    {31, 63, "ISO-8859-9,csISOLatin5,iso-ir-148,latin5,Windows-1254,CP1254"},
    {32, 64,
     "Windows-1252,ISO-8859-1,csISOLatin1,iso-ir-100,latin1,CP1252,CP819,IBM819,ISO-8859-15,"
     "latin9"},
    {33, 65, "Windows-1253,CP1253"},
    {35, 67, "UTF-8,UTF-16,UTF-16LE,UCS-2,UTF-16BE,UTF-32,UTF-32LE,UCS-4,UTF-32BE"},
    {36, 68, "Windows-1258,CP1258"},
    {37, 69,
     "CP850,IBM850,csPC850Multilingual,csHPRoman8,hp-roman8,roman8,Apple Roman,MacRoman,macintosh"},
    {12, 70, "iscii-bng"},
    {15, 71, "iscii-dev"},
    {18, 72, "iscii-gjr"},
    {21, 73, "iscii-knd"},
    {22, 74, "iscii-mlm"},
    {25, 75, "iscii-ori"},
    {19, 76, "iscii-pnj"},
    {29, 77, "iscii-tlg"},
    {28, 66, "iscii-tml"},
    {34, 66, "TSCII"},
};

const Family unknownFamily = {38, 38, ""};

std::vector<Record> records;
QHash<QByteArray, int> indexOfName; // in lower case: each document asks for one when it is made
int defaultCodec = 0;

bool hasName(const QList<QByteArray> &names, const char *name)
{
    return std::any_of(names.begin(), names.end(), [name](const QByteArray &candidate) {
        return candidate.compare(name, Qt::CaseInsensitive) == 0;
    });
}

Family familyOf(const QList<QByteArray> &names)
{
    for (const Family &family : families) {
        const QList<QByteArray> members = QByteArray(family.names).split(',');
        for (const QByteArray &member : members) {
            if (hasName(names, member.constData()))
                return family;
        }
    }
    return unknownFamily;
}

const Record *recordAt(int index)
{
    return index >= 0 && index < TextCodecs::count() ? &records[std::size_t(index)] : nullptr;
}

QTextCodec *codecAt(int index)
{
    const Record *record = recordAt(index);
    return record ? QTextCodec::codecForMib(record->mib) : nullptr;
}

QTextCodec *utf8Codec()
{
    return QTextCodec::codecForName("UTF-8");
}

struct DetectorDeleter
{
    void operator()(uchardet_t detector) const
    {
        uchardet_delete(detector);
    }
};

using Detector = std::unique_ptr<std::remove_pointer_t<uchardet_t>, DetectorDeleter>;

QByteArray detectedCharset(const QByteArray &data)
{
    const Detector detector(uchardet_new());
    if (uchardet_handle_data(detector.get(), data.constData(), std::size_t(data.size())) != 0)
        return QByteArray();
    uchardet_data_end(detector.get());
    return uchardet_get_charset(detector.get());
}

QTextCodec *codecForCharset(const QByteArray &charset)
{
    // The detector's word for data without a byte above 127, which speaks for no encoding. Taken
    // for one, it would lose the first accented letter that is typed into such a file.
    if (charset == "ASCII")
        return nullptr;
    // Unified Hangul Code is the extended EUC-KR; Qt knows it under the older name only.
    return QTextCodec::codecForName(charset == "UHC" ? QByteArrayLiteral("EUC-KR") : charset);
}

bool isValidUtf8(const QByteArray &data)
{
    QTextCodec::ConverterState state;
    utf8Codec()->toUnicode(data.constData(), data.size(), &state);
    return state.invalidChars == 0;
}

} // namespace

void TextCodecs::initialize()
{
    records.clear();
    const QList<int> mibs = QTextCodec::availableMibs();
    for (int mib : mibs) {
        if (const QTextCodec *codec = QTextCodec::codecForMib(mib)) {
            const QList<QByteArray> names = QList<QByteArray>{codec->name()} + codec->aliases();
            records.push_back({mib, familyOf(names), names});
        }
    }
    std::stable_sort(records.begin(), records.end(), [](const Record &a, const Record &b) {
        return a.family.displayId < b.family.displayId;
    });
    indexOfName.clear();
    for (int i = int(records.size()) - 1; i >= 0; --i) {
        const QList<QByteArray> &names = records[std::size_t(i)].names;
        for (const QByteArray &name : names)
            indexOfName.insert(name.toLower(), i);
    }
}

int TextCodecs::count()
{
    return int(records.size());
}

int TextCodecs::index(const char *name)
{
    return indexOfName.value(QByteArray(name).toLower(), 0);
}

QByteArray TextCodecs::name(int index)
{
    const Record *record = recordAt(index);
    return record ? record->names.first() : QByteArray();
}

QString TextCodecs::displayName(int index)
{
    const Record *record = recordAt(index);
    return record ? FTranslator::instance()->translate(record->family.displayId) : QString();
}

QString TextCodecs::languages(int index)
{
    const Record *record = recordAt(index);
    return record ? FTranslator::instance()->translate(record->family.languageId) : QString();
}

QString TextCodecs::aliases(int index)
{
    const Record *record = recordAt(index);
    return record ? QString::fromLatin1(record->names.join(", ")) : QString();
}

void TextCodecs::setDefaultCodec(int index)
{
    defaultCodec = index;
}

QTextCodec *TextCodecs::get(const QByteArray &data)
{
    if (QTextCodec *codec = QTextCodec::codecForUtfText(data, nullptr))
        return codec;
    if (QTextCodec *codec = codecForCharset(detectedCharset(data)))
        return codec;
    if (isValidUtf8(data))
        return utf8Codec();
    QTextCodec *codec = defaultCodec > 0 ? codecAt(defaultCodec) : nullptr;
    return codec ? codec : QTextCodec::codecForLocale();
}

QString TextCodecs::stringFromData(const QByteArray &data, int *codec)
{
    QTextCodec *used = codecAt(*codec);
    if (!used)
        used = get(data);
    *codec = index(used->name().constData());
    return used->toUnicode(data);
}

QByteArray TextCodecs::stringToData(const QString &text, int codec)
{
    QTextCodec *used = codecAt(codec);
    if (!used)
        used = utf8Codec();
    QByteArray data = used->fromUnicode(text);
    // Qt 5 sizes UTF-32 by UTF-16 units, so each surrogate pair leaves four undefined bytes at the
    // end: only the mark and the code points are ours.
    if (used->name().startsWith("UTF-32"))
        data.truncate(4 * (1 + text.toUcs4().size()));
    return data;
}

} // namespace Vela
