// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>

class QLabel;
class QStackedWidget;

namespace Vela {
class ProjectFile;
}

namespace Studio {

class Colors;
class ImagePreview;
class TextPreview;

/// Shows the content of one file: a text, an image, or a few words about any other.
class FileView : public QWidget
{
    Q_OBJECT

public:
    explicit FileView(const Colors &colors, QWidget *parent = nullptr);

    /// Shows \a file, which must live until the next call, under \a path. Null shows nothing.
    void setFile(Vela::ProjectFile *file, const QString &path);
    Vela::ProjectFile *file() const;
    /// Reads the content again and keeps the place in a text.
    void refresh();
    /// Shows whether the file has unsaved changes.
    void setModifiedMark(bool modified);
    /// Goes to a place in a text; \a line and \a column are from 0.
    void goTo(int line, int column);
    /// Returns null if the file is no text.
    TextPreview *textPreview() const;
    /// Takes the colours anew.
    void updateColors();

Q_SIGNALS:
    /// The cursor in the text is at another place, from 0; -1 for a file without a text.
    void positionChanged(int line, int column);

private:
    void showContent();
    void tellPosition();

    Vela::ProjectFile *m_file = nullptr;
    QString m_path;
    bool m_modified = false;
    QLabel *m_title;
    QLabel *m_note;
    QStackedWidget *m_pages;
    TextPreview *m_text;
    ImagePreview *m_image;
    QLabel *m_words;
};

} // namespace Studio
