// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QByteArray>
#include <QString>

class QTextCodec;

namespace Vela {

/// The list of text encodings in the order and with the names of a menu, the detection of a file's
/// encoding, and the conversion between bytes and text.
///
/// An encoding is known by its index in the list, from 0. Every operation takes any index: one
/// outside the list gives the result that the operation names. The list is read without a lock and
/// from several threads at once; only initialize() and setDefaultCodec() change anything, so they
/// are called on the main thread while no other thread uses this class.
class VELA_EXPORT TextCodecs
{
public:
    TextCodecs() = delete;

    /// Builds the list from the codecs that Qt offers. The host calls it once, before any other
    /// use; a further call builds the list anew and makes every stored index invalid.
    static void initialize();

    /// Returns the number of encodings in the list.
    static int count();

    /// Returns the index of the first encoding that has \a name among its names, whatever the case,
    /// or 0 if there is none.
    static int index(const char *name);

    /// Returns the name that Qt gives to the encoding, or an empty one outside the list.
    static QByteArray name(int index);

    /// Returns the menu text of the encoding in the user's language, or an empty string outside
    /// the list.
    static QString displayName(int index);

    /// Returns the languages of the encoding in the user's language, or an empty string outside
    /// the list.
    static QString languages(int index);

    /// Returns all names of the encoding, joined by ", ", or an empty string outside the list.
    static QString aliases(int index);

    /// Sets the encoding of files whose bytes tell nothing. With 0, the initial value, or an index
    /// outside the list that is the encoding of the locale.
    static void setDefaultCodec(int index);

    /// Returns the codec that \a data is judged to be in: by its byte-order mark, by the look of
    /// its bytes, as UTF-8 if it is valid, then the default codec, then that of the locale. The
    /// codec belongs to Qt.
    static QTextCodec *get(const QByteArray &data);

    /// Returns \a data as text, without a byte-order mark. The encoding is that at \a codec, or the
    /// one that get() judges if the value is negative or outside the list. On return \a codec,
    /// which must not be null, holds the index of the encoding used, by index(). Bytes that do not
    /// fit the encoding become replacement characters.
    static QString stringFromData(const QByteArray &data, int *codec);

    /// Returns \a text in the encoding at \a codec, or in UTF-8, which holds every text, outside
    /// the list. UTF-16 and UTF-32 get a byte-order mark. Characters that the encoding lacks are
    /// replaced as Qt does it.
    static QByteArray stringToData(const QString &text, int codec);
};

} // namespace Vela
