// SPDX-FileCopyrightText: The Folidex authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/scripted_twain.h"

#include <QDir>
#include <QFile>

using namespace Qt::StringLiterals;

namespace folidex::test {

namespace {

// Below the longest that a scripted helper hangs.
constexpr std::chrono::seconds kAmple{60};

} // namespace

ScriptedTwain::ScriptedTwain() {
    const QString program = QString::fromUtf8(SCRIPTED_HELPER);
    settings.program64 = {program, {folder_.path(), u"64"_s}};
    settings.program32 = {program, {folder_.path(), u"32"_s}};
    settings.list = settings.silence = kAmple;
    // Longer than anything: a driver that is not to be waited for must be cut short.
    settings.release = std::chrono::minutes(10);
}

void ScriptedTwain::put_file(const QString& name, const QByteArray& content) const {
    QFile file(folder_.filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

void ScriptedTwain::list(int bits, const QStringList& script) const {
    put_file(u"list%1"_s.arg(bits), script.join(u'\n').toUtf8());
}

void ScriptedTwain::scan(int bits, const QStringList& script) const {
    put_file(u"scan%1"_s.arg(bits), script.join(u'\n').toUtf8());
}

QStringList ScriptedTwain::pages(const QList<int>& widths) {
    QStringList script{u"opened"_s, u"await"_s, u"window"_s};
    for (const int width : widths)
        script << u"page gray %1 50 100 100"_s.arg(width) << u"rows 50"_s << u"end"_s;
    return script << u"done 0"_s;
}

QStringList ScriptedTwain::log() const {
    QStringList lines;
    const QDir folder(folder_.path());
    for (const QString& name : folder.entryList({u"log *"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            continue;
        // The last line may be half written.
        const QString text = QString::fromUtf8(file.readAll());
        lines += text.left(text.lastIndexOf(u'\n') + 1).split(u'\n', Qt::SkipEmptyParts);
    }
    return lines;
}

} // namespace folidex::test
