// SPDX-License-Identifier: MIT
#include "studio/window/imagepreview.h"
#include "studio/window/palettegrid.h"
#include "studio/window/spritesmodel.h"
#include "studio/window/spritesview.h"
#include "studio/windowfixture.h"

#include "engine/engine.h"
#include "engine/engineextension.h"
#include "engine/extensionmanager.h"
#include "frame/filesystemarchive.h"
#include "image/palette.h"
#include "image/palettes.h"
#include "image/sprite.h"
#include "image/sprites.h"
#include "project/project.h"

#include <QHelpEvent>
#include <QLabel>
#include <QListView>
#include <QToolTip>

using Studio::SpritesModel;
using Studio::SpritesView;
using Vela::SubItem;

namespace {

constexpr int spriteCount = 600;
const char fileName[] = "rowan/test.sprites";

// A square of one of 16 colours on the transparent one.
QImage square(int color)
{
    QImage image(10, 6, QImage::Format_Indexed8);
    QVector<QRgb> table(256, qRgb(0, 0, 0));
    for (int i = 0; i < 16; ++i)
        table[i] = qRgb(255 - i, i * 10, 40);
    image.setColorTable(table);
    image.fill(0);
    for (int y = 1; y < 5; ++y) {
        for (int x = 3; x < 7; ++x)
            image.setPixel(x, y, uint(color));
    }
    return image;
}

// Writes a file of sprites as the engine does, and has the main file name it.
bool writeSprites(const WindowFixture &f)
{
    const QString main = f.inMeadow("rowan/rowan.lantern");
    QFile text(main);
    if (!text.open(QIODevice::Append) || text.write("\n[files]\nsprites = test.sprites\n") < 0)
        return false;
    text.close();
    const auto &extensions = Vela::ExtensionManager::list(Vela::Extension::EngineProvider);
    Vela::Engine *engine = static_cast<Vela::EngineExtension *>(extensions.value(0))->engine();
    Vela::ProjectFile *file = engine->createFile(Vela::Project::Sprites, nullptr);
    auto *sprites = dynamic_cast<Vela::Sprites *>(file);
    for (int i = 0; i < spriteCount; ++i)
        sprites->add(QVariant::fromValue(SubItem{i / 100, i % 100}), square(1 + i % 15),
                     Vela::ShareMode::Share);
    sprites->add(QStringLiteral("9,0"), QImage(), Vela::ShareMode::Share);
    const bool written =
        file->toFile(Vela::FileSystemArchive::instance(), f.inMeadow(fileName), 0, nullptr);
    file->release();
    return written;
}

} // namespace

class TestSpritesView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        f = std::make_unique<WindowFixture>();
        QVERIFY(writeSprites(*f));
        QVERIFY(f->open({QLatin1String(fileName)}));
        view = f->window->findChild<SpritesView *>();
        QVERIFY(view->isVisible());
        list = f->find<QListView>("spriteList");
    }

    void cleanup()
    {
        f.reset();
    }

    void picturesComeInTheBackground()
    {
        SpritesModel *model = view->model();
        QCOMPARE(model->rowCount(), spriteCount + 1);
        QCOMPARE(model->index(234).data().toString(), QStringLiteral("2,34"));
        QTRY_VERIFY(!model->isFilling());
        const auto pictureOf = [model](int row) {
            return model->index(row).data(Qt::DecorationRole).value<QPixmap>().toImage();
        };
        const QImage first = pictureOf(0);
        const QPoint middle = first.rect().center();
        QCOMPARE(first.pixel(middle), square(1).color(1));
        QCOMPARE(qAlpha(first.pixel(1, middle.y())), 0);
        // Nobody has looked at the end yet.
        QCOMPARE(qAlpha(pictureOf(spriteCount - 1).pixel(middle)), 0);
        list->scrollToBottom();
        QTRY_COMPARE(pictureOf(spriteCount - 1).pixel(middle),
                     square(1 + (spriteCount - 1) % 15).color(1 + (spriteCount - 1) % 15));
        QCOMPARE(model->index(spriteCount).data(Qt::AccessibleTextRole).toString(),
                 QStringLiteral("Sprite 9,0, empty"));
    }

    void theChosenSpriteIsShownWithItsPalette()
    {
        f->click(list, view->model()->index(3));
        QCOMPARE(view->currentSprite()->identifier(), (SubItem{0, 3}));
        QCOMPARE(f->find<QLabel>("spriteWords")->text(),
                 QStringLiteral("0,3: 10 by 6 pixels, axis at 0, 0"));
        QCOMPARE(f->find<QLabel>("paletteName")->text(), QStringLiteral("Palette 0,0"));
        auto *image = f->find<Studio::ImagePreview>("spriteImage");
        QCOMPARE(image->grab().toImage().pixel(image->rect().center()), square(4).color(4));
        auto *palette = f->find<Studio::PaletteGrid>("paletteGrid");
        const int side = palette->width() / 16;
        const QPoint place(side * 5 + side / 2, side / 2);
        QCOMPARE(palette->colorAt(place), 5);
        QHelpEvent help(QEvent::ToolTip, place, palette->mapToGlobal(place));
        QApplication::sendEvent(palette, &help);
        QCOMPARE(QToolTip::text(), QStringLiteral("5: red 250, green 50, blue 40, alpha 255"));
        // The palette can do without the mouse.
        palette->setFocus();
        QTest::keyClick(palette, Qt::Key_Left);
        QTest::keyClick(palette, Qt::Key_Right);
        QTest::keyClick(palette, Qt::Key_Right);
        QCOMPARE(QToolTip::text(), QStringLiteral("2: red 253, green 20, blue 40, alpha 255"));
        QTest::keyClick(palette, Qt::Key_Down);
        QVERIFY(palette->accessibleDescription().startsWith(QLatin1String("18: red 0")));
        // The keys of the list go on from there.
        QTest::keyClick(list, Qt::Key_Right);
        QCOMPARE(view->currentSprite()->index(), 4u);
        f->click(list, view->model()->index(3));
    }

    void propertiesAreThoseOfTheSprite()
    {
        f->click(list, view->model()->index(3));
        QVERIFY(f->typeProperty(QStringLiteral("Axis"), QStringLiteral("4,5")));
        QCOMPARE(view->currentSprite()->axis(), QPoint(4, 5));
        QTRY_VERIFY(f->window->isWindowModified());
        QVERIFY(f->find<QLabel>("spriteWords")->text().contains(QLatin1String("axis at 4, 5")));
        QVERIFY(f->typeProperty(QStringLiteral("Identifier"), QStringLiteral("7,7")));
        QCOMPARE(view->model()->index(3).data().toString(), QStringLiteral("7,7"));
        f->trigger("undo");
        f->trigger("undo");
        QCOMPARE(view->currentSprite()->axis(), QPoint(0, 0));
        QTRY_VERIFY(!f->window->isWindowModified());
    }

    void otherCountsAndOtherFiles()
    {
        f->click(list, view->model()->index(5));
        Vela::Sprites *sprites = view->model()->sprites();
        sprites->remove(2);
        QCOMPARE(view->model()->rowCount(), spriteCount);
        QCOMPARE(list->currentIndex().row(), 5);
        sprites->clear();
        QCOMPARE(view->model()->rowCount(), 0);
        QCOMPARE(view->currentSprite(), nullptr);
        f->trigger("undo");
        QCOMPARE(view->model()->rowCount(), spriteCount);
        // A text, and back.
        QVERIFY(f->clickFile(QStringLiteral("rowan/rowan.motion")));
        QCOMPARE(view->model()->sprites(), nullptr);
        QVERIFY(f->clickFile(QLatin1String(fileName)));
        QCOMPARE(list->currentIndex().row(), 5);
    }

private:
    std::unique_ptr<WindowFixture> f;
    SpritesView *view = nullptr;
    QListView *list = nullptr;
};

QTEST_MAIN(TestSpritesView)
#include "tst_spritesview.moc"
