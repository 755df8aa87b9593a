// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/icons.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QTest>

using namespace folidex;
using namespace Qt::StringLiterals;

class IconsTest : public QObject {
    Q_OBJECT

private:
    /// Colour of the strongest pixel, its cover left out; invalid when none covers much.
    static QColor ink(const QImage& image) {
        QColor strongest(0, 0, 0, 0);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y).alpha() > strongest.alpha())
                    strongest = image.pixelColor(x, y);
        return strongest.alpha() > 128
                   ? QColor(strongest.red(), strongest.green(), strongest.blue())
                   : QColor();
    }

private Q_SLOTS:
    void cleanup() { QGuiApplication::setPalette(QPalette()); }

    void every_icon_is_there_at_every_scale_data() {
        QTest::addColumn<QString>("name");
        for (const char* name :
             {"add",      "calendar", "delete",      "document", "drop",    "edit",        "error",
              "exit",     "folder",   "help",        "info",     "locate",  "maintenance", "new",
              "open",     "pdf",      "preferences", "print",    "refresh", "remove",      "save",
              "save-new", "scan",     "tag",         "view",     "warning"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void every_icon_is_there_at_every_scale() {
        QFETCH(QString, name);
        const QIcon found = icon(name);
        QVERIFY(!found.isNull());
        for (const int size : {16, 20, 24, 32})
            for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
                const QPixmap pixmap = found.pixmap(QSize(size, size), scale);
                QCOMPARE(pixmap.width(), int(size * scale));
                QVERIFY(ink(pixmap.toImage()).isValid());
            }
    }

    void an_unknown_icon_is_null() {
        QVERIFY(icon(u"no such icon"_s).isNull());
        QVERIFY(icon(u"no such icon"_s).pixmap(16).isNull());
    }

    void icons_follow_the_text_colour_also_when_it_changes() {
        const QIcon found = icon(u"add"_s);
        QPalette palette;
        palette.setColor(QPalette::WindowText, QColor(10, 20, 30));
        QGuiApplication::setPalette(palette);
        QCOMPARE(ink(found.pixmap(24).toImage()), QColor(10, 20, 30));
        palette.setColor(QPalette::WindowText, QColor(250, 240, 230));
        QGuiApplication::setPalette(palette);
        QCOMPARE(ink(found.pixmap(24).toImage()), QColor(250, 240, 230));
    }

    void a_disabled_icon_is_paler() {
        QPalette palette;
        palette.setColor(QPalette::Disabled, QPalette::WindowText, QColor(170, 170, 170));
        QGuiApplication::setPalette(palette);
        const QPixmap disabled = icon(u"add"_s).pixmap(QSize(24, 24), QIcon::Disabled);
        QCOMPARE(ink(disabled.toImage()), QColor(170, 170, 170));
    }

    void a_painted_icon_is_sharp_on_a_fine_screen() {
        QImage image(48, 48, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(2);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        icon(u"add"_s).paint(&painter, QRect(0, 0, 24, 24));
        painter.end();
        QCOMPARE(image.convertToFormat(QImage::Format_ARGB32),
                 icon(u"add"_s)
                     .pixmap(QSize(24, 24), 2.0)
                     .toImage()
                     .convertToFormat(QImage::Format_ARGB32));
    }

    void the_programs_own_icon_is_coloured_and_there_from_16_to_256() {
        const QIcon own = application_icon();
        for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
            const QPixmap pixmap = own.pixmap(QSize(size, size), 1.0);
            QCOMPARE(pixmap.size(), QSize(size, size));
            QVERIFY(pixmap.toImage().pixelColor(size / 8, size * 3 / 4).blue() > 150);
        }
    }
};

QTEST_MAIN(IconsTest)
#include "icons_test.moc"
