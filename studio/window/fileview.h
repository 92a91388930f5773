// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/syntaxcolors.h"
#include "studio/window/textsearch.h"
#include "studio/window/textview.h"

#include <QHash>
#include <QWidget>

class QLabel;
class QStackedWidget;

namespace Vela {
class CodeDocument;
class ProjectFile;
} // namespace Vela

namespace Studio {

class Colors;
class FindBar;
class ImagePreview;

/// Shows the content of one file: a definition text, to be edited, another text or an image, to be
/// looked at, or a few words about any other. Finds in texts.
class FileView : public QWidget
{
    Q_OBJECT

public:
    explicit FileView(const Colors &colors, QWidget *parent = nullptr);

    /// Shows \a file, which must live until the next call, under \a path. Null shows nothing. A
    /// path that was shown before comes back as it was left.
    void setFile(Vela::ProjectFile *file, const QString &path);
    Vela::ProjectFile *file() const;
    /// Returns the definition text that is edited here, or null.
    Vela::CodeDocument *document() const;
    /// Forgets how the files were left.
    void forgetPlaces();
    /// Reads the content again and keeps the place in a text.
    void refresh();
    /// Shows whether the file has unsaved changes.
    void setModifiedMark(bool modified);
    /// Goes to a place in a text; \a line and \a column are from 0.
    void goTo(int line, int column);
    /// Returns null if the file is no text.
    TextView *textView() const;
    /// Takes the colours anew.
    void updateColors();

    /// Asks what to find, and with \a replacing what to put there, in a text.
    void openFindBar(bool replacing);
    /// Goes to the next match of what was asked for, or to the one before; asks if nothing was.
    void findNext(bool backward);

Q_SIGNALS:
    /// The cursor in the text is at another place, from 0; -1 for a file without a text.
    void positionChanged(int line, int column);
    /// The text that is edited is another.
    void edited();
    /// Something can be undone or redone now, or no longer.
    void historyChanged();

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLayout *makeHeader();
    void connectText();
    void connectFindBar();
    void showContent();
    void showPreview();
    void tellPosition();
    void replaceOne();
    void replaceAll();
    bool canReplace(const Vela::RegExp &expression) const;
    void tellOutcome(TextSearch::Outcome outcome);

    Vela::ProjectFile *m_file = nullptr;
    Vela::CodeDocument *m_document = nullptr;
    QString m_path;
    bool m_modified = false;
    QLabel *m_title;
    QLabel *m_note;
    QStackedWidget *m_pages;
    TextView *m_text;
    ImagePreview *m_image;
    QLabel *m_words;
    FindBar *m_findBar;
    SyntaxColors m_syntax;
    QHash<QString, TextView::Place> m_places;
};

} // namespace Studio
