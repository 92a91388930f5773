// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QString>
#include <QTextCharFormat>
#include <QVector>

namespace Studio {

class Settings;

/// One colour that the library or an extension asks for, in both themes.
struct ColorInfo
{
    enum Role {
        Text,           ///< written on any of the text backgrounds
        TextBackground, ///< behind text
        Mark            ///< drawn over pictures
    };
    enum Style { Plain = 0, Bold = 1, Italic = 2, Underline = 4 };

    const char *key;
    const char *text; ///< as for tr() in the context "Studio::Colors"
    Role role;
    QRgb light;
    QRgb dark;
    int style = Plain; ///< of the text format under the same key; Style values or-ed
};

/// The colours and text formats of the programs: a value for a light and one for a dark palette,
/// and over both what the user chose under "color/KEY" and "format/KEY".
class Colors
{
public:
    explicit Colors(Settings &settings);

    static const QVector<ColorInfo> &table();
    static QString text(const ColorInfo &info);
    /// Returns whether the palette of the application shows light text on a dark window.
    static bool isDark();

    /// Returns an invalid colour for a key that nobody knows.
    QColor color(const QString &key) const;
    /// Returns whether the user chose the colour of a key.
    bool isChosen(const QString &key) const;
    /// An invalid colour gives the key back its default.
    void setColor(const QString &key, const QColor &color);
    /// Returns the format of text colours. That of a background colours what is behind the text;
    /// that of an unknown key changes nothing.
    QTextCharFormat format(const QString &key) const;
    /// Returns whether the user chose the format of a key.
    bool isFormatChosen(const QString &key) const;
    void setFormat(const QString &key, const QTextCharFormat &format);
    void resetFormat(const QString &key);

private:
    Settings &m_settings;
};

} // namespace Studio
