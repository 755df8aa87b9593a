// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "controls/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <algorithm>

// Resources of a static library are only there once something has asked for them.
static void take_in_resources() {
    Q_INIT_RESOURCE(icons);
}

namespace folidex {

using namespace Qt::StringLiterals;

namespace {

// The sizes in which the build renders the icons (resources/icons/CMakeLists.txt).
constexpr int kSizes[] = {16, 20, 24, 30, 32, 36, 40, 48, 60, 64, 72, 96};
constexpr int kOwnSizes[] = {16, 20, 24, 32, 40, 48, 64, 96, 128, 256};

template <class Sizes> int rendered_size(const Sizes& sizes, int wanted) {
    const auto found = std::lower_bound(std::begin(sizes), std::end(sizes), wanted);
    return found == std::end(sizes) ? *std::prev(found) : *found;
}

QColor tint(QIcon::Mode mode) {
    const QPalette palette = QGuiApplication::palette();
    switch (mode) {
    case QIcon::Disabled:
        return palette.color(QPalette::Disabled, QPalette::WindowText);
    case QIcon::Selected:
        return palette.color(QPalette::Active, QPalette::HighlightedText);
    default:
        return palette.color(QPalette::Active, QPalette::WindowText);
    }
}

/// A one-coloured icon: the rendered shape, filled with the palette's colour of the moment.
class TintedIcon : public QIconEngine {
public:
    explicit TintedIcon(QString name) : name_(std::move(name)) {}

    QIconEngine* clone() const override { return new TintedIcon(name_); }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        const int side = std::min(size.width(), size.height());
        if (side <= 0)
            return {};
        QImage shape(u":/folidex/icons/%1-%2.png"_s.arg(name_).arg(rendered_size(kSizes, side)));
        if (shape.isNull())
            return {};
        if (shape.width() != side)
            shape = shape.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        shape = shape.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&shape);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(shape.rect(), tint(mode));
        painter.end();
        return QPixmap::fromImage(shape);
    }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const double ratio = painter->device()->devicePixelRatioF();
        const int side = std::min(rect.width(), rect.height());
        QRect place(QPoint(), QSize(side, side));
        place.moveCenter(rect.center());
        painter->drawPixmap(place, pixmap(QSizeF(place.size() * ratio).toSize(), mode, state));
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        QPixmap result = pixmap(size, mode, state);
        result.setDevicePixelRatio(scale);
        return result;
    }

    bool isNull() override { return pixmap({16, 16}, QIcon::Normal, QIcon::Off).isNull(); }
    QString iconName() override { return name_; }
    QString key() const override { return u"folidex-tinted"_s; }

private:
    QString name_;
};

} // namespace

QIcon icon(const QString& name) {
    take_in_resources();
    return QIcon(new TintedIcon(name));
}

QIcon application_icon() {
    take_in_resources();
    QIcon own;
    for (const int size : kOwnSizes)
        own.addFile(u":/folidex/icons/folidex-%1.png"_s.arg(size), QSize(size, size));
    return own;
}

} // namespace folidex
