// SPDX-License-Identifier: MIT
#include "studio/window/theme.h"

#include "studio/settings.h"

#include <QApplication>
#include <QStyle>

namespace Studio {

namespace {

const QString themeKey = QStringLiteral("theme");

} // namespace

Theme::Theme(Settings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_system(QApplication::palette())
    , m_light(QApplication::style()->standardPalette())
{
    connect(&m_settings, &Settings::changed, this, [this](const QString &key) {
        if (key == themeKey)
            apply();
    });
    apply();
}

void Theme::apply()
{
    const int choice = m_settings.value(themeKey).toInt();
    const QPalette wanted = choice == Dark ? darkPalette() : choice == Light ? m_light : m_system;
    if (wanted != QApplication::palette())
        QApplication::setPalette(wanted);
}

QPalette Theme::darkPalette()
{
    const QColor window(0x2b, 0x2d, 0x30);
    const QColor base(0x1e, 0x1f, 0x22);
    const QColor text(0xdf, 0xe1, 0xe5);
    QPalette dark(text, window, QColor(0x4a, 0x4d, 0x52), QColor(0x18, 0x19, 0x1b),
                  QColor(0x3c, 0x3f, 0x43), text, Qt::white, base, window);
    dark.setColor(QPalette::AlternateBase, QColor(0x26, 0x28, 0x2b));
    dark.setColor(QPalette::Highlight, QColor(0x2f, 0x6d, 0xb5));
    dark.setColor(QPalette::HighlightedText, Qt::white);
    dark.setColor(QPalette::ToolTipBase, window);
    dark.setColor(QPalette::ToolTipText, text);
    dark.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9d, 0xa3));
    dark.setColor(QPalette::Link, QColor(0x6c, 0xa8, 0xf0));
    const QColor weak(0x7d, 0x80, 0x86);
    dark.setColor(QPalette::Disabled, QPalette::Text, weak);
    dark.setColor(QPalette::Disabled, QPalette::WindowText, weak);
    dark.setColor(QPalette::Disabled, QPalette::ButtonText, weak);
    return dark;
}

} // namespace Studio
