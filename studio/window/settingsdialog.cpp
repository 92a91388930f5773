// SPDX-License-Identifier: MIT
#include "studio/window/settingsdialog.h"

#include "engine/engine.h"
#include "frame/fileutils.h"
#include "studio/controls.h"
#include "studio/host.h"
#include "studio/session/engineloader.h"
#include "studio/window/colorspage.h"
#include "studio/window/formatspage.h"
#include "studio/window/questionspage.h"
#include "studio/window/shortcutspage.h"
#include "ui_settingsdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>

namespace Studio {

namespace {

constexpr int LargestNumber = 200; // the numbers are sizes of fonts

} // namespace

SettingsDialog::SettingsDialog(Host &host, QWidget *parent)
    : QDialog(parent)
    , m_host(host)
    , m_settings(host.settings())
    , m_ui(std::make_unique<Ui::SettingsDialog>())
{
    m_ui->setupUi(this);
    QPushButton *exporting = m_ui->buttons->addButton(tr("Export..."), QDialogButtonBox::ResetRole);
    QPushButton *importing = m_ui->buttons->addButton(tr("Import..."), QDialogButtonBox::ResetRole);
    exporting->setAutoDefault(false);
    importing->setAutoDefault(false);
    connect(exporting, &QPushButton::clicked, this, &SettingsDialog::exportSettings);
    connect(importing, &QPushButton::clicked, this, &SettingsDialog::importSettings);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_ui->pageList, &QListWidget::currentRowChanged, m_ui->pages,
            &QStackedWidget::setCurrentIndex);
    makePages();
    showPage(0);
}

SettingsDialog::~SettingsDialog() = default;

void SettingsDialog::showPage(int row)
{
    m_ui->pageList->setCurrentRow(row);
}

void SettingsDialog::makePages()
{
    addPage(tr("General"), makePage(SettingInfo::GeneralPage));
    addPage(tr("Files"), makePage(SettingInfo::FilesPage));
    addPage(tr("Text"), makePage(SettingInfo::TextPage));
    addPage(tr("Colours"), new ColorsPage(m_host.colors()));
    addPage(tr("Words"), new FormatsPage(m_host.colors()));
    addPage(tr("Questions"), new QuestionsPage(m_settings));
    addPage(tr("Shortcuts"), new ShortcutsPage(m_host.actions()));
    const QList<Vela::Engine *> engines = EngineLoader::engines();
    for (Vela::Engine *engine : engines)
        addEnginePage(*engine);
}

void SettingsDialog::addPage(const QString &title, QWidget *page)
{
    m_ui->pageList->addItem(title);
    m_ui->pages->addWidget(page);
}

// An engine without options leaves its page as it is.
void SettingsDialog::addEnginePage(Vela::Engine &engine)
{
    auto page = std::make_unique<QWidget>();
    engine.registerCustomOptions(page.get());
    if (page->layout() || !page->children().isEmpty())
        addPage(engine.queryString(Vela::Engine::DisplayName, 0), page.release());
}

QWidget *SettingsDialog::makePage(int page)
{
    auto *widget = new QWidget;
    auto *layout = new QFormLayout(widget);
    for (const SettingInfo &info : Settings::known()) {
        if (info.page != page)
            continue;
        QWidget *editor = makeEditor(info);
        editor->setObjectName(QLatin1String(info.key));
        if (qobject_cast<QCheckBox *>(editor))
            layout->addRow(editor);
        else
            layout->addRow(Settings::text(info), editor);
    }
    return widget;
}

QWidget *SettingsDialog::makeEditor(const SettingInfo &info)
{
    const QString key = QLatin1String(info.key);
    const QVariant value = m_settings.value(key);
    if (!info.choices.isEmpty())
        return makeChoice(info);
    if (info.isVolume)
        return makeVolume(info);
    if (key == QLatin1String("font_name"))
        return makeFontChoice(key);
    switch (info.defaultValue.userType()) {
    case QMetaType::Bool: {
        auto *box = new QCheckBox(Settings::text(info));
        box->setChecked(value.toBool());
        connect(box, &QCheckBox::toggled, this,
                [this, key](bool on) { m_settings.setValue(key, on); });
        return box;
    }
    case QMetaType::Int: {
        auto *box = new QSpinBox;
        box->setRange(1, LargestNumber);
        box->setValue(value.toInt());
        connect(box, qOverload<int>(&QSpinBox::valueChanged), this,
                [this, key](int number) { m_settings.setValue(key, number); });
        return box;
    }
    default: {
        auto *edit = new QLineEdit(value.toString());
        connect(edit, &QLineEdit::editingFinished, this,
                [this, key, edit] { m_settings.setValue(key, edit->text()); });
        return edit;
    }
    }
}

QWidget *SettingsDialog::makeChoice(const SettingInfo &info)
{
    const QString key = QLatin1String(info.key);
    auto *box = new QComboBox;
    for (const char *choice : info.choices)
        box->addItem(Settings::tr(choice));
    box->setCurrentIndex(m_settings.value(key).toInt());
    connect(box, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this, key](int index) { m_settings.setValue(key, index); });
    return box;
}

QWidget *SettingsDialog::makeVolume(const SettingInfo &info)
{
    const QString key = QLatin1String(info.key);
    auto *volume = new VolumeSlider;
    volume->slider()->setAccessibleName(Settings::text(info));
    volume->push(m_settings.value(key).toInt());
    connect(volume, &VolumeSlider::edited, this,
            [this, key](int value) { m_settings.setValue(key, value); });
    return volume;
}

QWidget *SettingsDialog::makeFontChoice(const QString &key)
{
    auto *box = new QFontComboBox;
    box->setFontFilters(QFontComboBox::MonospacedFonts);
    box->setCurrentFont(QFont(m_settings.value(key).toString()));
    connect(box, &QFontComboBox::currentFontChanged, this,
            [this, key](const QFont &font) { m_settings.setValue(key, font.family()); });
    return box;
}

void SettingsDialog::exportSettings()
{
    const QString name =
        Vela::getSaveFileName(this, tr("Export Settings"), QString(), tr("Settings (*.ini)"));
    QString error;
    if (!name.isEmpty() && !m_settings.exportTo(name, &error))
        QMessageBox::warning(this, tr("Export Settings"), error);
}

void SettingsDialog::importSettings()
{
    const QString name =
        Vela::getOpenFileName(this, tr("Import Settings"), QString(), tr("Settings (*.ini)"));
    if (name.isEmpty())
        return;
    QString error;
    if (!m_settings.importFrom(name, &error)) {
        QMessageBox::warning(this, tr("Import Settings"), error);
        return;
    }
    const int row = m_ui->pageList->currentRow();
    m_ui->pageList->clear();
    while (QWidget *page = m_ui->pages->widget(0)) {
        m_ui->pages->removeWidget(page);
        delete page;
    }
    makePages();
    showPage(row);
}

} // namespace Studio
