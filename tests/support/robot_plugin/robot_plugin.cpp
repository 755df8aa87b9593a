// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "answers.h"
#include "line_socket.h"

#include <QCoreApplication>
#include <QGenericPlugin>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <memory>

/// Tells a test what the program shows. The toolkit loads it into an unchanged program that finds
/// it in QT_PLUGIN_PATH and is told its name in QT_QPA_GENERIC_PLUGINS; FOLIDEX_ROBOT is the port
/// of this machine at which the test listens. It only answers: keys and clicks come from outside.
class RobotPlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "robot.json")

public:
    QObject* create(const QString& name, const QString& options) override;
};

/// The connection to the test: a question a line, an answer a line, in JSON.
class Interview : public QObject {
    Q_OBJECT

public:
    explicit Interview(quint16 port) : socket_(port) {
        if (!socket_.open())
            qFatal("nobody listens at the port %d that FOLIDEX_ROBOT names", port);
        socket_.write("{\"hello\":" + QByteArray::number(QCoreApplication::applicationPid()) +
                      "}\n");
        notifier_ = std::make_unique<QSocketNotifier>(socket_.descriptor(), QSocketNotifier::Read);
        connect(notifier_.get(), &QSocketNotifier::activated, this, &Interview::take_in);
    }

private:
    void take_in() {
        const QByteArray bytes = socket_.read();
        if (bytes.isEmpty()) {
            notifier_->setEnabled(false);
            return;
        }
        pending_ += bytes;
        for (qsizetype end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
            const QJsonObject question = QJsonDocument::fromJson(pending_.left(end)).object();
            pending_.remove(0, end + 1);
            socket_.write(QJsonDocument(answer(question)).toJson(QJsonDocument::Compact) + '\n');
        }
    }

    LineSocket socket_;
    std::unique_ptr<QSocketNotifier> notifier_;
    QByteArray pending_;
};

QObject* RobotPlugin::create(const QString& name, const QString&) {
    const int port = qEnvironmentVariableIntValue("FOLIDEX_ROBOT");
    if (name != QLatin1String("folidexrobot") || port == 0)
        return nullptr;
    return new Interview(static_cast<quint16>(port));
}

#include "robot_plugin.moc"
