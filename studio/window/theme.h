// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPalette>

namespace Studio {

class Settings;

/// Gives the program the light or the dark palette that the setting "theme" asks for, at once when
/// the setting changes.
class Theme : public QObject
{
    Q_OBJECT

public:
    /// Values of the setting.
    enum Choice { OfSystem, Light, Dark };

    explicit Theme(Settings &settings, QObject *parent = nullptr);

    static QPalette darkPalette();

private:
    void apply();

    Settings &m_settings;
    const QPalette m_system; ///< as it was at the start
    const QPalette m_light;
};

} // namespace Studio
