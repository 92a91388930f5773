// SPDX-License-Identifier: MIT
#include "studio/colors.h"

#include "studio/settings.h"

#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

namespace Studio {

namespace {

// A stored format is a list of words: "#rrggbb" the text, "on:#rrggbb" what is behind it, and the
// styles. The words keep the settings file readable.
const QLatin1String backgroundWord("on:");
const QLatin1String boldWord("bold");
const QLatin1String italicWord("italic");
const QLatin1String underlineWord("underline");

QString colorKey(const QString &key)
{
    return QStringLiteral("color/") + key;
}

QString formatKey(const QString &key)
{
    return QStringLiteral("format/") + key;
}

const ColorInfo *find(const QString &key)
{
    const QVector<ColorInfo> &all = Colors::table();
    const auto found = std::find_if(all.begin(), all.end(), [&key](const ColorInfo &color) {
        return key == QLatin1String(color.key);
    });
    return found == all.end() ? nullptr : &*found;
}

QString toWords(const QTextCharFormat &format)
{
    QStringList words;
    if (format.hasProperty(QTextFormat::ForegroundBrush))
        words.append(format.foreground().color().name());
    if (format.hasProperty(QTextFormat::BackgroundBrush))
        words.append(backgroundWord + format.background().color().name());
    if (format.fontWeight() > QFont::Normal)
        words.append(boldWord);
    if (format.fontItalic())
        words.append(italicWord);
    if (format.fontUnderline())
        words.append(underlineWord);
    return words.join(QLatin1Char(' '));
}

bool addWord(const QString &word, QTextCharFormat &format)
{
    if (word == boldWord) {
        format.setFontWeight(QFont::Bold);
    } else if (word == italicWord) {
        format.setFontItalic(true);
    } else if (word == underlineWord) {
        format.setFontUnderline(true);
    } else {
        const bool background = word.startsWith(backgroundWord);
        const QColor color(background ? word.mid(backgroundWord.size()) : word);
        if (!color.isValid())
            return false;
        if (background)
            format.setBackground(color);
        else
            format.setForeground(color);
    }
    return true;
}

// Returns false, with part of the format read, if a word has no meaning.
bool fromWords(const QString &text, QTextCharFormat &format)
{
    const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    return !words.isEmpty() && std::all_of(words.begin(), words.end(), [&](const QString &word) {
        return addWord(word, format);
    });
}

} // namespace

const QVector<ColorInfo> &Colors::table()
{
    static const QVector<ColorInfo> colors = {
        // text
        {"foreground", QT_TRANSLATE_NOOP("Studio::Colors", "Text"), ColorInfo::Text, 0xff1f2328,
         0xffe3e6ea},
        {"comment", QT_TRANSLATE_NOOP("Studio::Colors", "Comments"), ColorInfo::Text, 0xff57606a,
         0xffaab4c0, ColorInfo::Italic},
        {"keyword", QT_TRANSLATE_NOOP("Studio::Colors", "Keywords"), ColorInfo::Text, 0xff0b4fa8,
         0xff8cc4ff, ColorInfo::Bold},
        {"section", QT_TRANSLATE_NOOP("Studio::Colors", "Section heads"), ColorInfo::Text,
         0xff6b21a8, 0xffdcb2ff, ColorInfo::Bold},
        {"property", QT_TRANSLATE_NOOP("Studio::Colors", "Names of properties"), ColorInfo::Text,
         0xff0f5a63, 0xff7fdbe6},
        {"string", QT_TRANSLATE_NOOP("Studio::Colors", "Strings"), ColorInfo::Text, 0xff8a3300,
         0xffffc08a},
        {"number", QT_TRANSLATE_NOOP("Studio::Colors", "Numbers"), ColorInfo::Text, 0xff0d5f2c,
         0xff93e0a6},
        {"function", QT_TRANSLATE_NOOP("Studio::Colors", "Functions"), ColorInfo::Text, 0xff5c4a00,
         0xffecd98a},
        {"operator", QT_TRANSLATE_NOOP("Studio::Colors", "Operators"), ColorInfo::Text, 0xff3d444d,
         0xffc9d1d9},
        {"line_number", QT_TRANSLATE_NOOP("Studio::Colors", "Line numbers"), ColorInfo::Text,
         0xff57606a, 0xffaab4c0},
        {"error", QT_TRANSLATE_NOOP("Studio::Colors", "Errors"), ColorInfo::Text, 0xffa8071a,
         0xffffb3b8, ColorInfo::Underline},
        {"warning", QT_TRANSLATE_NOOP("Studio::Colors", "Warnings"), ColorInfo::Text, 0xff7a4a00,
         0xffffd27f, ColorInfo::Underline},
        {"information", QT_TRANSLATE_NOOP("Studio::Colors", "Information"), ColorInfo::Text,
         0xff0b4fa8, 0xff8cc4ff},
        // behind text
        {"background", QT_TRANSLATE_NOOP("Studio::Colors", "Background"), ColorInfo::TextBackground,
         0xffffffff, 0xff1e2126},
        {"line", QT_TRANSLATE_NOOP("Studio::Colors", "Background of the current line"),
         ColorInfo::TextBackground, 0xfff1f5fb, 0xff272b32},
        // The bands round the cursor are darker than this, or in the dark lighter.
        {"block_range", QT_TRANSLATE_NOOP("Studio::Colors", "Background of the current block"),
         ColorInfo::TextBackground, 0xfffbfcfe, 0xff15171b},
        {"paren_range", QT_TRANSLATE_NOOP("Studio::Colors", "Background between brackets"),
         ColorInfo::TextBackground, 0xffdcefdc, 0xff28402f},
        {"paren", QT_TRANSLATE_NOOP("Studio::Colors", "Background of matching brackets"),
         ColorInfo::TextBackground, 0xfffff2b8, 0xff4a3f14, ColorInfo::Bold},
        {"search", QT_TRANSLATE_NOOP("Studio::Colors", "Background of what was found"),
         ColorInfo::TextBackground, 0xfffff2b8, 0xff4a3f14},
        // over pictures
        {"attackbox", QT_TRANSLATE_NOOP("Studio::Colors", "Attack boxes"), ColorInfo::Mark,
         0xffd92626, 0xffff5a5a},
        {"collisionbox", QT_TRANSLATE_NOOP("Studio::Colors", "Collision boxes"), ColorInfo::Mark,
         0xff2563d9, 0xff6ea0ff},
        {"crosshair_main", QT_TRANSLATE_NOOP("Studio::Colors", "Main crosshair"), ColorInfo::Mark,
         0xffc2187a, 0xffff6ec7},
        {"crosshair_secondary", QT_TRANSLATE_NOOP("Studio::Colors", "Second crosshair"),
         ColorInfo::Mark, 0xff0f7a3d, 0xff5fe08f},
        {"crosshair_extra", QT_TRANSLATE_NOOP("Studio::Colors", "Further crosshairs"),
         ColorInfo::Mark, 0xff9a5b00, 0xffffb648},
        {"back_start", QT_TRANSLATE_NOOP("Studio::Colors", "Background of pictures, top"),
         ColorInfo::Mark, 0xffe6e9ee, 0xff3a3f47},
        {"back_end", QT_TRANSLATE_NOOP("Studio::Colors", "Background of pictures, bottom"),
         ColorInfo::Mark, 0xffc4cad3, 0xff24282e},
        // in sounds
        {"sound_wave", QT_TRANSLATE_NOOP("Studio::Colors", "Waves of sounds"), ColorInfo::Mark,
         0xff1b62b5, 0xff7db4ff},
        {"sound_axis", QT_TRANSLATE_NOOP("Studio::Colors", "Silence in sounds"), ColorInfo::Mark,
         0xff78808b, 0xff8f969f},
        {"sound_selection", QT_TRANSLATE_NOOP("Studio::Colors", "Selected part of a sound"),
         ColorInfo::Mark, 0xffcfe2fa, 0xff2c4a70},
        {"sound_head", QT_TRANSLATE_NOOP("Studio::Colors", "What is heard of a sound"),
         ColorInfo::Mark, 0xffc01c28, 0xffff7b72},
    };
    return colors;
}

bool Colors::isDark()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance())
        && QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

QString Colors::text(const ColorInfo &info)
{
    return QCoreApplication::translate("Studio::Colors", info.text);
}

Colors::Colors(Settings &settings)
    : m_settings(settings)
{
}

bool Colors::isChosen(const QString &key) const
{
    return m_settings.contains(colorKey(key));
}

QColor Colors::color(const QString &key) const
{
    const QColor chosen(m_settings.value(colorKey(key)).toString());
    if (chosen.isValid())
        return chosen;
    const ColorInfo *info = find(key);
    if (!info)
        return QColor();
    return QColor::fromRgba(isDark() ? info->dark : info->light);
}

void Colors::setColor(const QString &key, const QColor &color)
{
    if (color.isValid())
        m_settings.setValue(colorKey(key), color.name(QColor::HexArgb));
    else
        m_settings.remove(colorKey(key));
}

QTextCharFormat Colors::format(const QString &key) const
{
    QTextCharFormat chosen;
    if (fromWords(m_settings.value(formatKey(key)).toString(), chosen))
        return chosen;
    const ColorInfo *info = find(key);
    QTextCharFormat standard;
    if (!info)
        return standard;
    if (info->role == ColorInfo::TextBackground)
        standard.setBackground(color(key));
    else
        standard.setForeground(color(key));
    if (info->style & ColorInfo::Bold)
        standard.setFontWeight(QFont::Bold);
    if (info->style & ColorInfo::Italic)
        standard.setFontItalic(true);
    if (info->style & ColorInfo::Underline)
        standard.setFontUnderline(true);
    return standard;
}

bool Colors::isFormatChosen(const QString &key) const
{
    return m_settings.contains(formatKey(key));
}

void Colors::setFormat(const QString &key, const QTextCharFormat &format)
{
    m_settings.setValue(formatKey(key), toWords(format));
}

void Colors::resetFormat(const QString &key)
{
    m_settings.remove(formatKey(key));
}

} // namespace Studio
