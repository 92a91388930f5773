// SPDX-License-Identifier: MIT
#include "studio/actionregistry.h"

#include "frame/menu.h"
#include "frame/translator.h"
#include "studio/icons.h"
#include "studio/libraryactions.h"
#include "studio/settings.h"
#include "studio/signature.h"

#include <QAction>
#include <QActionGroup>
#include <QDebug>
#include <algorithm>

namespace Studio {

namespace {

const QLatin1String shortcutGroup("shortcut/");

void setText(QAction *action, const Vela::Translator &translator, int id)
{
    action->setText(translator.translate(id));
    action->setToolTip(translator.toolTip(id));
    action->setStatusTip(translator.statusTip(id));
}

bool collide(const QKeySequence &a, const QKeySequence &b)
{
    return !a.isEmpty() && !b.isEmpty()
        && (a.matches(b) != QKeySequence::NoMatch || b.matches(a) != QKeySequence::NoMatch);
}

} // namespace

ActionRegistry::ActionRegistry(Settings &settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
    , m_editorActions(new QActionGroup(this))
{
    connect(&settings, &Settings::changed, this, &ActionRegistry::onSettingChanged);
}

ActionRegistry::~ActionRegistry()
{
    for (const QPointer<Vela::Menu> &menu : qAsConst(m_menus)) {
        if (menu && !menu->parent())
            delete menu;
    }
}

QAction *ActionRegistry::create(ActionSpec spec, const ActionBinding &binding, Vela::Menu *menu)
{
    auto *action = new QAction(this);
    action->setCheckable(binding.checkable);
    addText(action, binding);
    bind(action, spec.key, binding);
    spec.enabledBy = QString::fromLatin1(binding.enableSignal ? binding.enableSignal + 1 : "");
    if (menu) {
        menu->addAction(action);
        spec.place = menu->objectName();
    }
    add(action, spec);
    return action;
}

QAction *ActionRegistry::createEditorAction(const QString &key, const Vela::Translator *translator,
                                            int textId)
{
    ActionSpec spec;
    spec.key = key;
    spec.place = QLatin1String(LibraryAction::of(key).place);
    spec.shortcut = LibraryAction::of(key).shortcut;
    QAction *action = create(spec, {translator, textId, true, nullptr, nullptr, nullptr}, nullptr);
    m_editorActions->addAction(action);
    return action;
}

void ActionRegistry::add(QAction *action, const ActionSpec &spec)
{
    Entry entry{spec, action};
    if (find(spec.key))
        qWarning("%s: there is an action under this key already", qUtf8Printable(spec.key));
    if (entry.spec.icon.isEmpty())
        entry.spec.icon = spec.key;
    if (action->text().isEmpty())
        action->setText(spec.text);
    entry.spec.text = action->text();
    if (action->icon().isNull())
        action->setIcon(namedIcon(entry.spec.icon));
    action->setObjectName(spec.key);
    m_entries.append(entry);
    action->setShortcut(shortcut(spec.key));
    Q_EMIT actionAdded(action);
}

void ActionRegistry::addText(QAction *action, const ActionBinding &binding)
{
    if (!binding.translator)
        return;
    m_texts.append({action, binding.receiver, binding.receiver != nullptr, binding.translator,
                    binding.textId});
    setText(action, *binding.translator, binding.textId);
}

void ActionRegistry::bind(QAction *action, const QString &key, const ActionBinding &binding)
{
    const QMetaMethod slot = methodOf(binding.receiver, binding.slot, key);
    if (slot.isValid()) {
        const QMetaMethod signal =
            counterpart(action, binding.checkable ? "toggled" : "triggered", slot);
        if (signal.isValid())
            connect(action, signal, binding.receiver, slot);
        else
            qWarning("%s: an action cannot call \"%s\"", qUtf8Printable(key), binding.slot);
    }
    const QMetaMethod enabler = methodOf(binding.receiver, binding.enableSignal, key);
    if (enabler.isValid()) {
        const QMetaMethod setEnabled = counterpart(action, "setEnabled", enabler);
        if (setEnabled.isValid())
            connect(binding.receiver, enabler, action, setEnabled);
        else
            qWarning("%s: \"%s\" cannot enable an action", qUtf8Printable(key),
                     binding.enableSignal);
    }
}

QAction *ActionRegistry::action(const QString &key) const
{
    const Entry *entry = find(key);
    return entry ? entry->action.data() : nullptr;
}

const ActionRegistry::Entry *ActionRegistry::find(const QString &key) const
{
    const auto found =
        std::find_if(m_entries.rbegin(), m_entries.rend(),
                     [&key](const Entry &entry) { return entry.action && entry.spec.key == key; });
    return found == m_entries.rend() ? nullptr : &*found;
}

QVector<ActionRegistry::Entry> ActionRegistry::actions() const
{
    QVector<Entry> living;
    std::copy_if(m_entries.begin(), m_entries.end(), std::back_inserter(living),
                 [](const Entry &entry) { return !entry.action.isNull(); });
    return living;
}

QActionGroup *ActionRegistry::editorActions() const
{
    return m_editorActions;
}

Vela::Menu *ActionRegistry::menu(const QString &key)
{
    QPointer<Vela::Menu> &menu = m_menus[key];
    if (!menu) {
        menu = new Vela::Menu;
        menu->setObjectName(key);
        Q_EMIT menuAdded(menu);
    }
    return menu;
}

QKeySequence ActionRegistry::defaultShortcut(const QString &key) const
{
    const Entry *entry = find(key);
    return entry ? entry->spec.shortcut : QKeySequence();
}

QKeySequence ActionRegistry::shortcut(const QString &key) const
{
    const QString settingKey = shortcutGroup + key;
    if (!m_settings.contains(settingKey))
        return defaultShortcut(key);
    return QKeySequence(m_settings.value(settingKey).toString(), QKeySequence::PortableText);
}

void ActionRegistry::setShortcut(const QString &key, const QKeySequence &shortcut)
{
    m_settings.setValue(shortcutGroup + key, shortcut.toString(QKeySequence::PortableText));
}

void ActionRegistry::resetShortcut(const QString &key)
{
    m_settings.remove(shortcutGroup + key);
}

void ActionRegistry::onSettingChanged(const QString &settingKey)
{
    if (!settingKey.startsWith(shortcutGroup))
        return;
    const QString key = settingKey.mid(shortcutGroup.size());
    if (QAction *changed = action(key))
        changed->setShortcut(shortcut(key));
}

QStringList ActionRegistry::conflicts(const QString &key, const QKeySequence &shortcut) const
{
    QStringList keys;
    for (const Entry &entry : m_entries) {
        if (entry.action && entry.spec.key != key && collide(entry.action->shortcut(), shortcut))
            keys.append(entry.spec.key);
    }
    return keys;
}

void ActionRegistry::retranslate()
{
    for (const Text &text : qAsConst(m_texts)) {
        if (text.action && (text.receiver || !text.hasReceiver))
            setText(text.action, *text.translator, text.id);
    }
    for (Entry &entry : m_entries) {
        if (entry.action)
            entry.spec.text = entry.action->text();
    }
}

} // namespace Studio
