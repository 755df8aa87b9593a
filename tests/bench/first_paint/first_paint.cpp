// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QWidget>
#include <cstdio>
#include <ctime>
#include <unistd.h>

/// Ends a program when its first window is painted, and prints the moment: nanoseconds of the
/// system's monotonic clock. The toolkit loads it into an unchanged program that finds it in
/// QT_PLUGIN_PATH and is told its name in QT_QPA_GENERIC_PLUGINS.
class FirstPaintPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "first_paint.json")

public:
    QObject* create(const QString& name, const QString& options) override;
};

class Watch : public QObject {
    Q_OBJECT

public:
    Watch() { QCoreApplication::instance()->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* widget = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && widget && widget->isWindow() && !painting_) {
            painting_ = true;
            // Once this and all that is in the window has been painted.
            QMetaObject::invokeMethod(this, &Watch::tell, Qt::QueuedConnection);
        }
        return QObject::eventFilter(object, event);
    }

private:
    [[noreturn]] static void tell() {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        std::printf("%lld\n", static_cast<long long>(now.tv_sec) * 1'000'000'000 + now.tv_nsec);
        std::fflush(stdout);
        _exit(0);
    }

    bool painting_ = false;
};

QObject* FirstPaintPlugin::create(const QString& name, const QString&) {
    return name == QLatin1String("folidexfirstpaint") ? new Watch : nullptr;
}

#include "first_paint.moc"
