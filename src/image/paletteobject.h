// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "image/rgba.h"

#include <QColor>
#include <QObject>

#include <memory>

class QIODevice;

namespace Vela {

/// What PaletteObject::applyEffect() does to a colour. Alpha stays. Any other value does nothing.
enum RGBPaletteEffect : int {
    SwapRedBlueEffect = 1,
    SwapGreenBlueEffect = 2,
    SwapRedGreenEffect = 3,
    SwapBlueGreenEffect = 4,
    SwapGreenRedEffect = 5,
    SwapBlueRedEffect = 6,
    BrightenEffect = 7, ///< by 32
    DarkenEffect = 8,   ///< by 32
    GrayscaleEffect = 9,
    SepiaEffect = 10,
    VioletEffect = 11,
    FlattenEffect = 12, ///< grey, moved by 50 towards the middle
    WhitenEffect = 13,  ///< by 128
    BlackenEffect = 14  ///< by 128
};

/// The operations on a palette of 256 colours that somebody else owns and keeps alive. Main thread
/// only.
///
/// A mask has 256 entries, true for each selected colour; a null mask selects all.
class VELA_EXPORT PaletteObject : public QObject
{
    Q_OBJECT

public:
    explicit PaletteObject(RGBA (*palette)[256]);
    ~PaletteObject() override;
    /// Changes over to another table; nothing is emitted.
    PaletteObject &operator=(RGBA (*palette)[256]);

    RGBA (&palette())[256];
    RGBA at(unsigned char index) const;
    RGBA operator[](unsigned char index) const;
    QColor colorAt(unsigned char index) const;
    void toPalette(RGBA (&palette)[256]) const;
    /// Returns the nearest colour by red, green and blue; where several are equally near, alpha
    /// decides, then the lower index. Becomes faster for many calls on the same colours.
    unsigned char index(RGBA color) const;

    /// Each of the following emits changing() before and changed() behind its work, also where that
    /// leaves all colours as they were.
    void fromPalette(const RGBA *palette);
    void setColor(unsigned char index, RGBA color);
    void setColor(const bool *mask, RGBA color);
    /// Adds to the channels, within 0 to 255.
    void addRGB(const bool *mask, short red, short green, short blue);
    /// Adds degrees to the hue and 0 to 255 to the saturation, both within their bounds. The
    /// colours become opaque.
    void addHueSaturation(const bool *mask, short hue, short saturation);
    /// Puts those of 256 colours that the palette does not have at its end, from the last entry on.
    void addColors(const RGBA *colors);
    void applyEffect(RGBPaletteEffect effect, const bool *mask);
    /// Spreads colours evenly over the selected entries.
    void gradient(const bool *mask, RGBA from, RGBA to);
    /// Spreads colours over the entries from \a first up to the one in front of \a last. Does
    /// nothing, and emits nothing, unless \a first is below \a last.
    void gradient(unsigned char first, RGBA from, unsigned char last, const RGBA &to);
    /// Brings similar colours together; the first one stays.
    void sortByTones();
    /// Reverses the order of the selected entries. With \a keepEndAlpha the first and the last
    /// entry of the palette exchange alpha behind that, so that it stays in place when all is
    /// reversed.
    void switchColors(const bool *mask, bool keepEndAlpha);
    /// Fills the entries whose colour stands further behind again. The first entry plays no part.
    void clearDuplicated(RGB fill);

    /// Makes all bytes 0. Emits nothing.
    void empty();

    /// Reads "PNG", "PCX", "BMP", "GIF", "ACT" or "ACO"; any other word leaves it to the file's
    /// first four bytes (RIFF, JASC, swatch exchange, Painter), then to a PaletteLoader. On failure
    /// the palette keeps its colours, and nothing is emitted; else changing() and changed() are.
    bool fromFile(QIODevice *device, const char *format);
    /// Writes "ACT", without alpha, or the format of a PaletteSaver. Returns whether all was
    /// written.
    bool toFile(QIODevice *device, const char *format);

Q_SIGNALS:
    void changing();
    void changed();

private:
    struct KeptIndex;

    RGBA (*m_palette)[256];
    std::unique_ptr<KeptIndex> m_index;
};

} // namespace Vela
