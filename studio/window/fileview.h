// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/syntaxcolors.h"
#include "studio/window/textsearch.h"
#include "studio/window/textview.h"

#include <QHash>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QStackedWidget;

namespace Vela {
class CodeDocument;
class CodeEditor;
class ProjectFile;
class PropertyItem;
} // namespace Vela

namespace Studio {

class Colors;
class Editors;
class FindBar;
class ImagePreview;
class Settings;
class SoundFileView;
class SoundsView;
class SoundView;
class SpritesView;

/// Shows the content of one file: a definition text, in the workspace of its editor, another text
/// or images or sounds, to be looked at, or a few words about any other. Finds in texts.
class FileView : public QWidget
{
    Q_OBJECT

public:
    FileView(Editors &editors, Settings &settings, const Colors &colors, QWidget *parent = nullptr);
    /// Gives the workspaces' widgets back.
    ~FileView() override;

    /// Shows \a file, which must live until the next call, under \a path. Null shows nothing. A
    /// path that was shown before comes back as it was left.
    void setFile(Vela::ProjectFile *file, const QString &path);
    Vela::ProjectFile *file() const;
    /// Returns the definition text that is edited here, or null.
    Vela::CodeDocument *document() const;
    /// Forgets how the files that are only looked at were left.
    void forgetPlaces();
    /// Reads the content again and keeps the place in a text.
    void refresh();
    /// Shows whether the file has unsaved changes.
    void setModifiedMark(bool modified);
    /// Goes to a place in a text; \a line and \a column are from 0.
    void goTo(int line, int column);
    /// Returns where the file's text is shown, or null if it is none.
    QPlainTextEdit *textEdit() const;
    /// Returns where a sound is shown and played, or null.
    SoundView *soundView() const;
    /// Returns what the properties are of: a sprite or a sound that is chosen, or else the file;
    /// null if they have none.
    Vela::PropertyItem *propertyItem() const;
    /// Gives the focus to the file's text or its list, if it has any.
    void focusText();
    /// Takes the colours anew.
    void updateColors();

    /// Asks what to find, and with \a replacing what to put there, in a text.
    void openFindBar(bool replacing);
    /// Returns what the find bar asks for, or else the words that are selected.
    SearchTerm searchTerm() const;
    /// Selects a match in the text.
    void showMatch(int line, int column, int length);
    /// Goes to the next match of what was asked for, or to the one before; asks if nothing was.
    void findNext(bool backward);

Q_SIGNALS:
    /// The cursor in the text is at another place, from 0; -1 for a file without a text.
    void positionChanged(int line, int column);
    /// The text that is edited is another.
    void edited();
    /// Something can be undone or redone now, or no longer.
    void historyChanged();
    /// soundView() is another, or has something to play now, or no longer.
    void soundChanged();
    /// propertyItem() is another, or has changed.
    void propertyItemChanged();
    /// All matches in all files are asked for.
    void findEverywhereWanted();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLayout *makeHeader();
    void connectText(QPlainTextEdit &text);
    void connectFindBar();
    void connectSounds();
    QString selectedWords() const;
    bool edit();
    void zoom(int turn);
    void showContent();
    void showPreview();
    void showSoundNote();
    void tellPosition();
    void replaceOne();
    void replaceAll();
    bool canReplace(const Vela::RegExp &expression) const;
    void tellOutcome(TextSearch::Outcome outcome);
    void highlightMatches(const Vela::RegExp &expression);

    Editors &m_editors;
    const Colors &m_colors;
    Vela::ProjectFile *m_file = nullptr;
    Vela::CodeDocument *m_document = nullptr;
    QString m_path;
    bool m_modified = false;
    QLabel *m_title;
    QLabel *m_note;
    QStackedWidget *m_pages;
    Vela::CodeEditor *m_editor; ///< of the workspace of definition texts
    TextView *m_text;
    ImagePreview *m_image;
    SpritesView *m_sprites;
    SoundsView *m_sounds;
    SoundFileView *m_sound;
    QString m_soundSize;
    QLabel *m_words;
    FindBar *m_findBar;
    SyntaxColors m_syntax;
    QHash<QString, TextView::Place> m_places;
    int m_wheelTurn = 0; ///< of the wheel that did not zoom yet, in eighths of a degree
};

} // namespace Studio
