// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QVector>

class QAction;
class QActionGroup;

namespace Vela {
class Menu;
class Translator;
} // namespace Vela

namespace Studio {

class Settings;

/// What the table of actions knows of one, for menus, tool bars, the page of shortcuts and the
/// command palette.
struct ActionSpec
{
    QString key;
    QString text;          ///< as shown, with its mnemonic
    QString icon;          ///< name as for Interface::icon(); the key where it is empty
    QKeySequence shortcut; ///< the program's own; the user's choice stands in the settings
    QString place;         ///< key of the menu
    QString scope;         ///< whose action it is: an editor's key, or "all"
    QString enabledBy;     ///< what enables it, as a signal; empty if nothing does
};

/// The slot and the signal that an editor binds an action to, as Qt's signature strings; see
/// Interface::createAction().
struct ActionBinding
{
    const Vela::Translator *translator;
    int textId;
    bool checkable;
    QObject *receiver;
    const char *slot;
    const char *enableSignal;
};

/// The one table of all actions, with their shortcuts and menus. It owns the actions that it makes
/// and the menus that nobody gives a parent.
class ActionRegistry : public QObject
{
    Q_OBJECT

public:
    struct Entry
    {
        ActionSpec spec;
        QPointer<QAction> action;
    };

    explicit ActionRegistry(Settings &settings, QObject *parent = nullptr);
    ~ActionRegistry() override;

    /// Makes an action under \a spec.key and binds it; text and tool tip come from the binding's
    /// translator. A string of the binding that names nothing is warned about and stays unbound.
    QAction *create(ActionSpec spec, const ActionBinding &binding, Vela::Menu *menu);
    /// Makes the checkable action of an editor; of these, one at a time is checked.
    QAction *createEditorAction(const QString &key, const Vela::Translator *translator, int textId);
    /// Enters an action that somebody else made and owns. Gives it the shortcut, and text and icon
    /// where it has none.
    void add(QAction *action, const ActionSpec &spec);

    /// Returns the last action made under \a key, or null.
    QAction *action(const QString &key) const;
    /// Returns the actions that still live, in the order of their making.
    QVector<Entry> actions() const;
    QActionGroup *editorActions() const;
    /// Returns the menu of that key, made at the first call.
    Vela::Menu *menu(const QString &key);

    /// Returns the program's own shortcut of an action.
    QKeySequence defaultShortcut(const QString &key) const;
    QKeySequence shortcut(const QString &key) const;
    /// Stores the user's choice; an empty one takes the shortcut away.
    void setShortcut(const QString &key, const QKeySequence &shortcut);
    /// Gives the program's own shortcut back.
    void resetShortcut(const QString &key);
    /// Returns the keys of the other actions with the same shortcut, or one that begins it or that
    /// it begins: none of them could be told from the other when typed.
    QStringList conflicts(const QString &key, const QKeySequence &shortcut) const;

    /// Takes all texts anew from their translators.
    void retranslate();

Q_SIGNALS:
    void actionAdded(QAction *action);
    void menuAdded(Vela::Menu *menu);

private:
    struct Text
    {
        QPointer<QAction> action;
        QPointer<QObject> receiver;
        bool hasReceiver;
        const Vela::Translator *translator;
        int id;
    };

    void addText(QAction *action, const ActionBinding &binding);
    void bind(QAction *action, const QString &key, const ActionBinding &binding);
    const Entry *find(const QString &key) const;
    void onSettingChanged(const QString &settingKey);

    Settings &m_settings;
    QActionGroup *m_editorActions;
    QVector<Entry> m_entries;
    QVector<Text> m_texts;
    QHash<QString, QPointer<Vela::Menu>> m_menus;
};

} // namespace Studio
