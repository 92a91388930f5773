// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class SettingsDialog;
}

namespace Vela {
class Engine;
}

namespace Studio {

class Host;
class Settings;
struct SettingInfo;

/// The user's settings, on pages made from the table of the known ones. Every change is stored at
/// once, so the dialog has nothing to accept or to reject.
class SettingsDialog : public QDialog
{
    Q_OBJECT

public:
    SettingsDialog(Host &host, QWidget *parent);
    ~SettingsDialog() override;

    /// Shows the page of that name in the list.
    void showPage(int row);

private:
    void makePages();
    void addPage(const QString &title, QWidget *page);
    void addEnginePage(Vela::Engine &engine);
    QWidget *makePage(int page);
    QWidget *makeEditor(const SettingInfo &info);
    QWidget *makeChoice(const SettingInfo &info);
    QWidget *makeVolume(const SettingInfo &info);
    QWidget *makeFontChoice(const QString &key);
    void exportSettings();
    void importSettings();

    Host &m_host;
    Settings &m_settings;
    std::unique_ptr<Ui::SettingsDialog> m_ui;
};

} // namespace Studio
